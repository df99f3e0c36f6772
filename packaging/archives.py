"""Zip files: names in order, one time for all, so that the same files give the same bytes."""
import os
import time as clock
import zipfile

import staging


def make(folder, target, inside, time):
    date = clock.gmtime(time)[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as archive:
        for name in staging.files_below(folder):
            entry = zipfile.ZipInfo(f"{inside}/{name}", date)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            with open(os.path.join(folder, name), "rb") as file:
                archive.writestr(entry, file.read())
    return target
