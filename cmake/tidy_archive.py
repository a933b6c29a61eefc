#!/usr/bin/env python3
"""Rewrites a zip archive so that the same files give the same bytes: sorted by name, with one time for all files,
readable by everybody, without the folder, the user and the clock of the packing machine.

    tidy_archive.py ARCHIVE SECONDS-SINCE-1970
"""
import os
import sys
import time
import zipfile

archive, seconds = sys.argv[1], int(sys.argv[2])
moment = time.gmtime(max(seconds, 315532800))[:6]  # the format knows no year before 1980
tidied = archive + ".tidied"
with zipfile.ZipFile(archive) as packed, zipfile.ZipFile(tidied, "w") as written:
    for name in sorted(n for n in packed.namelist() if not n.endswith("/")):
        entry = zipfile.ZipInfo(name, moment)
        entry.create_system = 3  # Unix; its permissions follow
        runs = packed.getinfo(name).external_attr >> 16 & 0o100
        entry.external_attr = (0o100755 if runs else 0o100644) << 16
        written.writestr(entry, packed.read(name), zipfile.ZIP_DEFLATED, 9)
os.replace(tidied, archive)
