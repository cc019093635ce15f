#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Lifts the helicopter off the helipad of the demo world, turning, and tells once a second what the
visual channel answers. It needs Python's standard library only. Exit status 1: no feedback came."""

import argparse
import socket
import struct
import sys
import time

RECORD_SIZE = 1490  # bytes, little-endian, without padding; what no field is stays 0
FIELDS = {  # where each begins, and its type: H h of 16 bits, I i of 32, f d floating point
    "command": (4, "I"), "system_cmd": (8, "I"),
    "weather_type": (12, "H"), "rain_level": (14, "H"), "snow_level": (16, "H"),
    "hail_level": (18, "H"), "cloud_enable": (24, "H"), "cloud_param1": (26, "h"),
    "cloud_param2": (28, "h"), "cloud_percent": (30, "h"), "cloud_top": (32, "f"),
    "cloud_base": (36, "f"), "weather_angle": (40, "f"), "weather_value_a": (44, "f"),
    "weather_value_b": (48, "i"),
    "sea_code": (90, "h"), "sea_speed": (92, "f"), "sea_angle": (96, "f"),
    "latitude": (124, "d"), "longitude": (132, "d"), "altitude": (140, "f"),
    "pitch": (144, "f"), "roll": (148, "f"), "heading": (152, "f"), "rotor_speed": (156, "f"),
    "radar_value": (420, "f"), "radar_sector_width": (424, "f"), "radar_sector_offset": (428, "f"),
    "hang_mass": (1428, "h"), "hang_length": (1430, "f"), "hang_enable": (1434, "H"),
}
FEEDBACK_SIZE = 108
FEEDBACK = "<iddf"  # frame, latitude and longitude of the ground, height above it; then wheels

PAD = {"latitude": 19.7124631, "longitude": -155.0625125}
RESTING, TOP = 13.67, 60  # m above sea level: where its origin is on the pad, and at the end
QUIET = {"system_cmd": 1, "weather_type": 1, "sea_code": 2, "rotor_speed": 270, "radar_value": 1,
         "radar_sector_width": 90, "hang_mass": 80, "hang_length": 2}  # where 0 is not nothing


def record(**values):
    """The bytes of a record with these fields; the others are 0."""
    data = bytearray(RECORD_SIZE)
    for name, value in values.items():
        offset, kind = FIELDS[name]
        struct.pack_into("<" + kind, data, offset, value)
    return data


def pose(seconds):
    """Where the helicopter is: up by 2 m a second and round once in 20 s."""
    return {**PAD, "altitude": min(RESTING + 2 * seconds, TOP),
            "heading": 18 * seconds % 360}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--host", default="127.0.0.1", help="where visual_channel runs")
    parser.add_argument("--port", type=int, default=10004, help="that it takes records at")
    parser.add_argument("--feedback-port", type=int, default=10005, help="that it answers to")
    parser.add_argument("--rate", type=int, default=100, help="records per second")
    parser.add_argument("--seconds", type=int, default=0, help="until the end; 0: until Ctrl-C")
    options = parser.parse_args()
    if not 0 < options.port < 65536 or not 0 < options.feedback_port < 65536 or options.rate < 1 \
            or options.seconds < 0:
        parser.error("ports are 1 to 65535, the rate is 1 or more, and the seconds 0 or more")
    link = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    try:
        link.bind(("", options.feedback_port))
    except OSError as error:
        sys.exit(f"send.py: port {options.feedback_port} of the feedback: {error.strerror}")
    link.setblocking(False)

    start = time.monotonic()
    sent = received = 0
    below = None
    while options.seconds == 0 or sent < options.seconds * options.rate:
        now = pose(sent / options.rate)
        reset = 6 if sent == 0 else 0  # once: every record with it resets the scene
        link.sendto(record(command=reset, **QUIET, **now), (options.host, options.port))
        sent += 1
        time.sleep(max(0, start + sent / options.rate - time.monotonic()))
        try:
            while True:
                data = link.recv(2048)
                if len(data) == FEEDBACK_SIZE:
                    received += 1
                    below = struct.unpack_from(FEEDBACK, data)
        except BlockingIOError:
            pass  # that was all
        if sent % options.rate == 0:
            print(f"{sent // options.rate} s, altitude {now['altitude']:.2f} m,"
                  f" {received} feedbacks: {below[3]:.2f} m above the ground at"
                  f" latitude {below[1]:.6f} longitude {below[2]:.6f}" if below else
                  f"no feedback on port {options.feedback_port} yet: does visual_channel run?",
                  flush=True)
    return 0 if received else 1


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        pass
    except OSError as error:
        sys.exit(f"send.py: {error.strerror}")
