"""Breaks each rule of texts.py and terms.py once, in a copy of the texts, and looks for the line that tells it.

All breakages stand in one copy, at different texts, so that one run of
texts.main shows them all; what takes a whole table away
stands in a second copy. main() returns a line for each rule that noticed nothing.
"""
import shutil
import tempfile
from pathlib import Path

import texts

# Language, key without IDS_LUMI_, a piece of its text, what takes its place, a piece of the line that must appear.
TEXTS = [
    ("de_DE", "SLIDER_SMOOTH", "Haut glätten", "", "empty"),
    ("de_DE", "SLIDER_WHITEN", "Haut aufhellen", "Haut aufhellen ", "leading or trailing blank"),
    ("de_DE", "SLIDER_EYES", "Augen vergrößern", "Augen  vergrößern", "a double blank"),
    ("de_DE", "SLIDER_FACE", "Gesicht", "Gesi\u0063\u0327ht", "not composed"),
    ("de_DE", "SHOW_DETAILS", "Details", "'Details'", "straight quote"),
    ("de_DE", "CAMERA_INK", "Tuschemalerei", "”Tuschemalerei“", "does not belong to this language"),
    ("de_DE", "CAMERA_CITY", "Stadt", "Sta\u200bdt", "invisible or unknown character U+200B"),
    ("de_DE", "CAMERA_OFFICE", "Büro", "{Büro", "a brace belongs to no placeholder"),
    ("de_DE", "CAMERA_CAFE", "Café", "Café...", "ASCII ellipsis or dash"),
    ("de_DE", "MSG_IMAGE_TOO_LARGE", "4096\u00a0×\u00a04096", "4096 × 4096", "sizes are written with no-break blanks"),
    ("de_DE", "PREVIEW_HINT", "gespiegelt.", "gespiegelt .", "a blank before a punctuation mark"),
    ("de_DE", "OVER_MAX_LIMIT", "32", "31", "other numbers"),
    ("de_DE", "ACC_DELETE_ITEM", "{n} ", "", "other placeholders"),
    ("de_DE", "DRIVER_BROKEN", "Pixora", "das Programm", "other product name"),
    ("de_DE", "FUNCTION_UNAVAILABLE", "/algorithm", "/other", "other markup or links"),
    ("de_DE", "INTRO_AUTO_FRAMING_TIP1", "Kamera:", "&lt;b&gt;Kamera&lt;/b&gt;:", "a plain text holds markup"),
    ("de_DE", "INTRODUCTION_TITLE", "Einführung", "Einführungsseite", "columns, its limit is"),
    ("de_DE", "TAB_BACKGROUND", "Hintergrund", "Hintergründe", "TAB_BACKGROUND is no part of"),
    ("de_DE", "AUTO_FRAMING", "Auto-Bildausschnitt", "Automatischer Ausschnitt", "the table of terms has"),
    ("de_DE", "INTRO_EYE_CONTACT_TIP3", "„Blickkontakt“", "Der Blickkontakt", "“Blickkontakt” is not how"),
    ("de_DE", "INTRO_AUTO_FRAMING_TIP3", "„Auto-Bildausschnitt“", "Der automatische Bildausschnitt",
     "“automatische Bildausschnitt” is not how"),
    ("de_DE", "INTRO_BACKGROUND_TEXT", "Mit „Keiner“", "Ohne einen", "has no word for “none”"),
    ("de_DE", "MSG_EFFECTS_NOT_STARTED", " erneut", "", "has no word for “reinstall”"),
    ("de_DE", "CAMERA_WALLPAPER", "Desktophintergrund", "Tapete", "the table of terms has “Desktophintergrund”"),
    ("it_IT", "MSG_SERVICE_PROBLEM", "effetti della fotocamera", "effetti fotocamera", "has no word for “camera effects”"),
    ("zh_CN", "INTRO_CARD_TEXT", "特效", "效果", "“效果” is not how “effect” is said"),
    ("zh_TW", "BACKGROUND_DESC", "畫面", "畫面.", "ASCII punctuation beside a Chinese character"),
    ("ja_JP", "BACKGROUND_DESC", "します", "します．", "punctuation that Japanese does not use"),
    ("ar_SA", "INTRO_CARD_TEXT", ".", "?", "ASCII punctuation where Arabic has its own"),
    ("ru_RU", "AUTO_FRAMING_DESC", "остаетесь", "остаётесь", "ё is written е"),
    ("ru_RU", "INTRO_EYE_CONTACT_TIP3", "«Взгляд в камеру» выключает", "При взгляде в камеру выключается",
     "“взгляде в камеру” is not how “eye contact” is said"),
    ("ru_RU", "CAMERA_CITY", "Город", "Гоpод", "mixes Latin and Cyrillic"),
    ("fr_FR", "DELETE_QUESTION", "\u00a0?", " ?", "no no-break blank before"),
    ("es_ES", "DELETE_QUESTION", "¿", "", "¿ or ¡ is missing"),
    ("ko_KR", "INTRO_BACKGROUND_TIP1", "정면에서 얼굴에 빛을 비추고 무늬 없는 벽 앞에 앉으면 윤곽이 깔끔합니다.",
     "Light your face from the front, and sit before a plain wall for clean edges.", "not translated"),
    ("fr_FR", "FUNCTION_UNAVAILABLE", "&lt;b&gt;", "&lt;u&gt;", "<u> is not in the markup subset"),
    ("es_ES", "FUNCTION_UNAVAILABLE", "&lt;/b&gt;", "", "<b> is not closed"),
    ("it_IT", "FUNCTION_UNAVAILABLE", "&lt;b&gt;", "", "</b> closes nothing"),
    ("pt_BR", "FUNCTION_UNAVAILABLE", "&lt;br&gt;", "&lt;br&gt;&lt; ", "a bracket belongs to no tag"),
]
# File below res, a piece of it, what takes its place, a piece of the line that must appear.
FILES = [
    ("values/tr_TR/strings.xml", ">Çerçeveleme<", ">Otomatik çerçeveleme<", "tr_TR: the three tab headers have"),
    ("values/fr_FR/strings.xml", 'direction="ltr"', 'direction="rtl"', "fr_FR: the root must be"),
    ("values/pt_BR/strings.xml", '<?xml version="1.0" encoding="utf-8"?>\n', "", "pt_BR: the first line must be"),
    ("values/pt_BR/strings.xml", "<!-- Windows -->", "<!-- Windows -->\r", "pt_BR: the file has carriage returns"),
    ("values/es_ES/strings.xml", '<String id="IDS_LUMI_OK">', '<String id="IDS_LUMI_OKAY">', "es_ES: IDS_LUMI_OK is missing"),
    ("values/es_ES/strings.xml", '<String id="IDS_LUMI_GOT_IT">', '<Text id="x"/><String id="IDS_LUMI_GOT_IT">',
     "es_ES: <Text {'id': 'x'}> is not a <String"),
    ("values/es_ES/strings.xml", '<String id="IDS_LUMI_CLOSE">', '<String id="IDS_LUMI_CLOSE">x</String><String id="IDS_LUMI_CLOSE">',
     "es_ES: IDS_LUMI_CLOSE is there 2 times"),
    ("values/tr_TR/strings.xml", "<!-- Windows -->", '<String id="IDS_LUMI_BACK">Geri</String>',
     "tr_TR: IDS_LUMI_BACK stands where en_US has IDS_LUMI_CAMERA_WND_TITLE"),
    ("values/README.md", "| `IDS_LUMI_OK` |", "| `IDS_LUMI_OKAY` |", "README.md: IDS_LUMI_OK is not listed"),
    ("values/README.md", "| `IDS_LUMI_BACK` |", "| `IDS_LUMI_CANCEL` |", "README.md: IDS_LUMI_CANCEL is listed twice"),
    ("values/README.md", "`preview_hint`", "Home page", "README.md: IDS_LUMI_PREVIEW_HINT stands at preview_hint"),
    ("values/README.md", "| PC | | `computador` |", "| PC | | computador |", "pt_BR: not a line of terms"),
    ("values/README.md", "| eye contact | 시선 맞춤 |", "| eyes | 시선 맞춤 |", "ko_KR: the terms are not those of en_US"),
    ("values/README.md", "| beauty | Retoque facial | `retoque facial` |", "| beauty | Retoque facial | `retoque` |",
     "beauty: no word for it is the name of its row"),
    ("values/README.md", "| `предпросмотр*` | `PREVIEW_HINT` |", "| `предпросмотр*` | `PREVIEW_HINT`, `BACK` |",
     "ru_RU: preview need not be free in BACK"),
    ("values/README.md", "| video | | `vídeo`, `vídeos` |", "| video | Vídeo | `vídeo`, `vídeos` |",
     "video: a row is named where the term is one"),
    ("layout/PixoraMsgBox.xml", "IDS_LUMI_OK", "IDS_LUMI_UNKNOWN", "IDS_LUMI_UNKNOWN is not in en_US"),
    ("layout/Pixora.xml", "IDS_LUMI_MINIMIZE", "IDS_LUMI_CAMERA_BEACH", "en_US: IDS_LUMI_MINIMIZE is used nowhere"),
    ("layout/Pixora.xml", "IDS_LUMI_CLOSE", "IDS_LUMI_CAMERA_STARRY", "IDS_LUMI_CAMERA_STARRY is kept unused, but"),
]
# The same for the second copy.
TABLES = [
    ("values/en_US/strings.xml", '  <String id="IDS_LUMI_CAMERA_BEACH">Beach</String>\n', "",
     "en_US: IDS_LUMI_CAMERA_BEACH is missing"),
    ("values/ko_KR/strings.xml", "</Strings>", "", "ko_KR: not well-formed XML"),
    ("values/README.md", "| wallpaper | Wallpaper |", "| wall | Wallpaper |", "README.md: there is no term wallpaper"),
]


def broken(changes, rename=()):
    """The lines of texts.main on a copy of the texts with these changes; a change that changes nothing is an error."""
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        for name in ("values", "layout"):
            shutil.copytree(texts.ROOT / "res" / name, root / "res" / name)
        for name in texts.CODE_FOLDERS:
            (root / name).symlink_to(texts.ROOT / name)
        for path, old, new, _ in changes:
            file = root / "res" / path
            text = file.read_bytes().decode()
            if text.count(old) == 0:
                return [f"texts_proof.py: {path} does not hold {old}"]
            file.write_bytes(text.replace(old, new, 1).encode())
        for old, new in rename:
            (root / "res" / "values" / old).rename(root / "res" / "values" / new)
        return texts.main(root)


def in_text(language, key, old, new, line):
    """A change of TEXTS in the form of FILES."""
    path = f"values/{language}/strings.xml"
    before = f'<String id="IDS_LUMI_{key}">'
    text = (texts.ROOT / "res" / path).read_bytes().decode()
    begin = text.index(before)
    whole = text[begin:text.index("</String>", begin)]
    return path, whole, whole.replace(old, new, 1), f"{language}: IDS_LUMI_{key}", line


def main():
    if texts.main():
        return []  # the texts are wrong themselves, and said so
    changes = [in_text(*change) for change in TEXTS]
    lines = broken([change[:3] + change[4:] for change in changes] + FILES)
    missing = [f"{path}: {new.strip()}: no line says “{line}”" for path, _, new, begin, line in changes
               if not any(begin in each and line in each for each in lines)]
    missing += [f"res/{path}: {new}: no line says “{line}”" for path, _, new, line in FILES
                if not any(line in each for each in lines)]
    lines = broken(TABLES, rename=[("ja_JP", "xx_XX")])
    for line in [change[3] for change in TABLES] + ["res/values/xx_XX: not in the list", "ja_JP: strings.xml is missing"]:
        if not any(line in each for each in lines):
            missing.append(f"second copy: no line says “{line}”")
    return missing
