# SPDX-License-Identifier: MIT
"""What other programs make of the datagrams with the files that are made for them, and what the page
for integrators tells."""

import pathlib
import re
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


def laid_out(output, tree):
    """The datagram that FlightGear writes with this part of a generic protocol file: no padding,
    integers cut off, a text behind its length."""
    data = b""
    for chunk in output.iter("chunk"):
        kind, text = chunk.findtext("type"), chunk.findtext("const")
        if kind == "string":
            data += struct.pack("<I", len(text)) + text.encode()
            continue
        value = float(text) if text else tree.get(chunk.findtext("node"), 0)
        value = value * float(chunk.findtext("factor", "1")) + float(chunk.findtext("offset", "0"))
        letter = {"int": "i", "word": "h", "float": "f", "double": "d"}[kind]
        data += struct.pack("<" + letter, int(value) if kind in ("int", "word") else value)
    return data


class Readers(unittest.TestCase):
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

    def test_flightgear_sends_the_record_and_reads_the_feedback(self):
        tree = {"/sim/freeze/master": 1, "/environment/rain-norm": 0.9,
                "/environment/clouds/layer[0]/coverage-type": 2,
                "/environment/clouds/layer[0]/elevation-ft": 1000,
                "/environment/visibility-m": 16093.4, "/position/latitude-deg": 19.725,
                "/environment/config/boundary/entry[0]/wind-speed-kt": 20,
                "/position/altitude-ft": -10, "/orientation/roll-deg": -3.5, "/rotors/main/rpm": 442,
                "/visual-channel/hang_enable": 1}
        root = xml.parse(EXAMPLES / "visual_channel.xml").getroot()
        record = laid_out(root.find("generic/output"), tree)
        values = {name: value for name, _, _, value in shown([(10004, record)])[0]}
        self.assertEqual(len(record), RECORD_SIZE)
        for name, expected in {
                "system_cmd": 2, "rain_level": 3, "cloud_percent": 60, "cloud_base": 304.8,
                "cloud_top": 904.8, "weather_value_b": 16093, "latitude": 19.725, "altitude": -3.048,
                "sea_code": 5, "sea_speed": 1028.89, "roll": -3.5, "rotor_speed": 269.62,
                "radar_value": 1, "hang_mass": 80, "hang_enable": 1}.items():
            self.assertAlmostEqual(float(values["vc_record." + name]), expected, 2, name)

        feedback = root.find("generic/input")
        self.assertEqual(int(feedback.findtext("record_length")), FEEDBACK_SIZE)
        read = [(chunk.findtext("name"), chunk.findtext("type")) for chunk in feedback.iter("chunk")]
        fields = shown([(10005, bytes(FEEDBACK_SIZE))])[0]
        sizes = {"int": 4, "float": 4, "double": 8}
        self.assertEqual([("vc_feedback." + name, sizes[kind]) for name, kind in read],
                         [(name, size) for name, _, size, _ in fields[:-1]])

    def test_the_page_tells_every_warning_of_the_link(self):
        source = pathlib.Path("channel/interface/src/LinkMonitor.cpp").read_text()
        page = pathlib.Path("docs/connect.md").read_text()
        warnings = re.findall(r'{"link\.\w+", "((?:[^"\\]|\\.)*)"', source)
        self.assertGreater(len(warnings), 9)
        for warning in warnings:
            for part in re.split(r"{\d}", warning.replace('\\"', '"')):
                self.assertIn(part.strip(), page, warning)


if __name__ == "__main__":
    unittest.main()
