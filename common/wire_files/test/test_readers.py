# SPDX-License-Identifier: MIT
"""What other programs make of the datagrams with the files that are made for them."""

import pathlib
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

EXAMPLES = pathlib.Path("examples")
RECORDING = pathlib.Path("data/recordings/helicopter_flight.hrec")
RECORD_SIZE, FEEDBACK_SIZE = 1490, 108
HEADERS = 28  # bytes of IPv4 and UDP in front of a datagram


def recorded(path):
    """The datagrams of a compact recording: whole ones, or runs of bytes that differ from before."""
    data = path.read_bytes()
    assert data[:12] == b"HREC1490" + struct.pack("<I", 2)
    at, datagram = 24, bytearray()
    while at < len(data):
        _, size, runs = struct.unpack_from("<qIH", data, at)
        at += 14
        if runs == 0xFFFF:
            datagram = bytearray(data[at:at + size])
            at += size
        else:
            for _ in range(runs):
                begin, length = struct.unpack_from("<HH", data, at)
                datagram[begin:begin + length] = data[at + 4:at + 4 + length]
                at += 4 + length
        yield bytes(datagram)


def shown(datagrams):
    """Per datagram, a pair of its destination port and its bytes, what tshark shows of it: a list of
    field, offset, size, value."""
    packets = b""
    for port, datagram in datagrams:
        udp = struct.pack(">HHHH", 4000, port, 8 + len(datagram), 0) + datagram
        ip = struct.pack(">BBHHHBBH4s4s", 0x45, 0, 20 + len(udp), 0, 0, 64, 17, 0,
                         b"\x7f\0\0\1", b"\x7f\0\0\1") + udp
        packets += struct.pack("<IIII", 0, 0, len(ip), len(ip)) + ip
    raw_ip = 101
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, raw_ip) + packets)
        file.flush()
        result = subprocess.run(
            ["tshark", "-X", f"lua_script:{EXAMPLES / 'visual_channel.lua'}", "-r", file.name,
             "-T", "pdml"], capture_output=True, check=True)
    return [[(f.get("name"), int(f.get("pos")) - HEADERS, int(f.get("size")), f.get("show"))
             for proto in packet.findall("proto") if proto.get("name").startswith("vc_")
             for f in proto.findall("field") if f.get("name").startswith("vc_")]
            for packet in xml.fromstring(result.stdout).findall("packet")]


class Dissector(unittest.TestCase):
    def assert_whole(self, fields, size):
        """Fields follow each other up to the datagram's end, and none is of no known field."""
        end = 0
        for name, offset, length, _ in fields:
            self.assertEqual(offset, end, name)
            self.assertNotIn("rest", name)
            end += length
        self.assertEqual(end, size)

    def test_a_recording_has_no_unknown_bytes(self):
        datagrams = list(recorded(RECORDING))[::300]
        self.assertGreater(len(datagrams), 5)
        packets = shown([(10004, datagram) for datagram in datagrams])
        self.assertEqual(len(packets), len(datagrams))
        for fields, datagram in zip(packets, datagrams):
            self.assert_whole(fields, RECORD_SIZE)
            values = {name: value for name, _, _, value in fields}
            for name, offset, kind in [("latitude", 124, "d"), ("altitude", 140, "f"),
                                       ("cloud_param1", 26, "h"), ("hang_length", 1430, "f"),
                                       ("hang_enable", 1434, "H")]:
                expected = struct.unpack_from("<" + kind, datagram, offset)[0]
                self.assertAlmostEqual(float(values["vc_record." + name]), expected, msg=name,
                                       delta=1e-5 * abs(expected))  # six digits of a float are shown

    def test_takes_what_looks_like_one_from_any_port_and_tells_wrong_sizes(self):
        record = next(recorded(RECORDING))
        feedback = bytearray(FEEDBACK_SIZE)
        struct.pack_into("<iddf", feedback, 0, 7, 19.75, -155.0, 12.5)
        other = bytes([255]) * FEEDBACK_SIZE
        packets = shown([(10005, feedback), (20004, record), (20005, feedback), (20005, other),
                         (10004, record[:-1]), (10005, feedback + b"xy")])
        self.assert_whole(packets[0], FEEDBACK_SIZE)
        self.assertIn(("vc_feedback.height_above_ground", 20, 4, "12.5"), packets[0])
        self.assert_whole(packets[1], RECORD_SIZE)
        self.assert_whole(packets[2], FEEDBACK_SIZE)
        self.assertEqual(packets[3], [])
        self.assertEqual(packets[4][-1][:3], ("vc_record.rest", 1436, 53))
        self.assertEqual(packets[5][-1][:3], ("vc_feedback.rest", 108, 2))


if __name__ == "__main__":
    unittest.main()
