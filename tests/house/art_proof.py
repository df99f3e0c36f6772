"""Breaks each rule of art.py once, in copies of the drawings and layouts, and looks for the line that tells it.

main() returns a line for each rule that noticed nothing.
"""
import shutil
import tempfile
from pathlib import Path

import art

# File below res, a piece of it, what takes its place, a piece of the line that must appear.
CHANGES = [
    ("themes.xml", 'name="text" light="#FF1B1F27"', 'name="text" light="#FF8B8F97"', "text on card, light: 3."),
    ("themes.xml", 'dark="#FFB4BCC8"', 'dark="#FF646C78"', "textsecondary on card, dark: "),
    ("themes.xml", 'contrast="btntext" kind="body"', 'contrast="windowtext" kind="body"', "buttontext on button: the system's"),
    ("themes.xml", 'contrast="hotlight" kind="text" on="window', 'contrast="hotlight" kind="text" on="wall', "there is no ground wall"),
    ("themes.xml", '<Mask name="thumb_none" contrast="btntext"/>', '<Mask name="thumb_some" contrast="btntext"/>',
     "thumb_some has no drawing"),
    ("themes.xml", '<Mask name="unchecked" contrast="windowtext"/>', "", "the mask of unchecked has no colour"),
    ("themes.xml", 'kind="graphic" on="window dialog card"', 'kind="graphic"', "focus: kind is one of"),
    ("themes.xml", '<Upright name="checked"/>', '<Upright name="ticked"/>', "ticked has no drawing"),
    ("themes.xml", 'name="track" light="#FFD9DEE7"', 'name="track" light="#FFD9DEE8"', "ColorTable.cpp: track is "),
    ("layout/Pixora.xml", 'bkcolor="mask"', 'bkcolor="#66000000"', "mask_control: bkcolor #66000000 has no name"),
    ("layout/PixoraMsgBox.xml", 'hotbkcolor="accenthover"', 'hotbkcolor="accenthot"', "hotbkcolor accenthot has no name"),
    ("layout/PixoraHomePage.xml", "barcolor='track'", "barcolor='tracks'", "Slider: barcolor tracks has no name"),
    ("layout/PixoraToolTip.xml", 'bordercolor="hintborder"', "", "nobody uses the colour hintborder"),
    ("layout/PixoraDialogWnd.xml", "dialog_warning.png", "dialog_sign.png", "dialog_warning.svg: no layout and no code"),
    ("art/LumiCamera/checked.svg", 'fill="#0A59F7"', 'fill="#0A59F8"', "fill #0A59F8 and #4A8CFF are no light and dark"),
    ("art/LumiCamera/unchecked.svg", "stroke: #8790A0", "stroke: #8790A1", "stroke #838D9C and #8790A1 are no light and dark"),
    ("art/LumiCamera/ic_info.svg", ".line { stroke: #FFFFFF }", ".line { stroke: #C0C0C0 }", "is neither white nor black"),
    ("art/LumiCamera/ic_eye.svg", ".gleam { fill", ".gloss { fill", "no element is of class gloss"),
    ("art/LumiCamera/ic_beauty.svg", "(prefers-color-scheme: dark)", "(prefers-color-scheme: dim)", "an @media that render-art"),
    ("art/LumiCamera/ic_cancel_hover.svg", 'fill="#C42B1C"', 'fill="#C42B1D"', "fill #C42B1D is no colour of the README"),
    ("art/LumiCamera/thumb_add.svg", "(prefers-color-scheme: dark)", "(print)", "thumb_add.svg: a dark look, or a place"),
    ("art/LumiCamera/back_hover.svg", "(forced-colors: active)", "(print)", "back_hover.svg: a mask, or a place"),
]
# What ends the reading of themes.xml stands in a second copy.
THEMES = [
    ("themes.xml", 'dark="#FF22272F"', 'dark="#22272F"', "dialog: dark is not #AARRGGBB"),
    ("themes.xml", 'contrast="hotlight"', 'contrast="hotlink"', "no colour of the system is called hotlink"),
    ("themes.xml", 'name="linkhover"', 'name="link"', "link: doubled"),
]


def broken(changes):
    """The lines of art.main on a copy with these changes; a change that changes nothing is an error."""
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        shutil.copytree(art.ROOT / "res", root / "res")
        for name in art.CODE_FOLDERS:
            (root / name).symlink_to(art.ROOT / name)
        (root / "duilib").symlink_to(art.ROOT / "duilib")
        for path, old, new, _ in changes:
            file = root / "res" / path
            text = file.read_bytes().decode()
            if old not in text:
                return [f"art_proof.py: {path} does not hold {old}"]
            file.write_bytes(text.replace(old, new, 1).encode())
        return art.main(root)


def main():
    if art.main():
        return []  # something is wrong already, and was said
    missing = []
    for changes in (CHANGES, THEMES):
        lines = broken(changes)
        missing += [f"res/{path}: {new}: no line says “{line}”" for path, _, new, line in changes
                    if not any(line in each for each in lines)]
    return missing
