#!/usr/bin/env python3
"""Packs an icon for macOS with all its ten pictures, those for screens of double density among them.

The two smallest are raw pixels in it, which png2icns writes; the others are PNG files as they are.

usage: make_icns.py PNG2ICNS ICON SIDE=PICTURE…    for each side from 16 to 1024
"""
import pathlib
import struct
import subprocess
import sys

# Sides by type: 16@2x, 32@2x, then 128, 256 and 512, each followed by its @2x.
TYPES = {b"ic11": "32", b"ic12": "64", b"ic07": "128", b"ic13": "256", b"ic08": "256", b"ic14": "512", b"ic09": "512",
         b"ic10": "1024"}

png2icns, icon, *sides = sys.argv[1:]
pictures = dict(side.split("=", 1) for side in sides)
subprocess.run([png2icns, icon, pictures["16"], pictures["32"]], check=True, stdout=subprocess.DEVNULL)
entries = pathlib.Path(icon).read_bytes()[8:]
for kind, side in TYPES.items():
    picture = pathlib.Path(pictures[side]).read_bytes()
    entries += kind + struct.pack(">I", 8 + len(picture)) + picture
pathlib.Path(icon).write_bytes(b"icns" + struct.pack(">I", 8 + len(entries)) + entries)
