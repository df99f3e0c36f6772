"""Breaks each fact of facts.py once, in a copy of the tree, and looks for the lines that tell it. main() returns a line
for each that nothing noticed."""
import re
import shutil
import tempfile
from pathlib import Path

import facts
import languages

EFFECTS = "service/EffectTable.h"
BACKGROUNDS = "service/FeatureTables.h"
LAYOUT = "res/layout/PixoraHomePage.xml"
INTEGRATION = "docs/integration.md"
INSTALLER = "packaging/Pixora.nsi"
LANGUAGES = "res/values/languages.txt"


def size_of(table):
    path = BACKGROUNDS if table == "Background" else EFFECTS
    return int(re.search(rf"std::array<{table}, (\d+)>", (facts.ROOT / path).read_text(encoding="utf-8"))[1])


EFFECT_ROWS, LEVEL_ROWS, BACKGROUND_ROWS = size_of("Effect"), size_of("BeautyLevel"), size_of("Background")
SPOKEN = f"{len(languages.read(facts.ROOT))} languages"
GLOW = f'''    {{EffectId::kGlow, L"glow_btn", L"glow", L"lumi_camera_glow", 0, {EFFECT_ROWS},
     Telling::kPing, "631770099", "open glow", "close glow", L""}},
}}}};
// clang-format on'''
# What changes in one copy of the tree (file, a piece of it, what takes its place), and pieces of the lines that must
# appear then.
BREAKAGES = [
    # One more effect and one more language that only their tables have.
    ([(EFFECTS, f"std::array<Effect, {EFFECT_ROWS}>", f"std::array<Effect, {EFFECT_ROWS + 1}>"),
      (EFFECTS, "}};\n// clang-format on", GLOW), (LANGUAGES, "\nar_SA", "\ncs_CZ ltr Czech „“\nar_SA")],
     ["Pixora.nsi: the list of settings lacks lumi_camera_glow", "seed-registry: the list of first values lacks lumi_",
      "the demo does not draw EffectId::kGlow", "the switches lacks glow_btn",
      "lumi_camera_glow is not listed with its first value 0", "| 631770099 | `open glow`, `close glow` |",
      "the list of languages lacks Czech", "the texts in Czech lacks TextRunning",
      "README.md: the number of languages"]),
    # Places that have what no table has, and wrong values.
    ([(INSTALLER, '"sync_custom"', '"sync_customs"'), ("scripts/seed-registry", "beauty_eye 5", "beauty_eye 6"),
      ("tools/demo/EffectSettings.cpp", "BeautyKind::kWhite", "BeautyKind::kOther"),
      (LAYOUT, '"slider_eye"', '"slider_nose"'), (LAYOUT, '"img_ten_background_btn"', '"img_other_background_btn"'),
      (LAYOUT, "IDS_LUMI_CAMERA_INK", "IDS_LUMI_CAMERA_CITY"), (LAYOUT, "ic_eye.png", "ic_nose.png"),
      ("pages/SwitchImages.cpp", "unchecked.png", "unticked.png"),
      (BACKGROUNDS, '"IDS_LUMI_CAMERA_CAFE"', '"IDS_LUMI_CAMERA_INK"'),
      (INTEGRATION, "| `lumi_camera_switch` | 1 |", "| `lumi_camera_switch` | 0 |"),
      (INTEGRATION, "| `sync_custom` |", "| `sync` |"), (INTEGRATION, "`close camera`", "`shut camera`"),
      (INTEGRATION, '"SMOOTH":5,"WHITE":5', '"WHITE":5,"SMOOTH":5'),
      (INTEGRATION, f"picture, {BACKGROUND_ROWS - 1} the", "picture, 99 the"),
      (INTEGRATION, "`0x4B273C`", "`0x4B273F`"),
      ("app/StartUp.cpp", 'L"filter_driver_install"', 'L"filter_driver"'),
      ("windows/PxMainWnd.cpp", "namespace {", "constexpr unsigned kMessage = WM_APP + 1;\nnamespace {"),
      ("windows/PxDialogWnd.cpp", "ServiceMessages::kNotificationCode", "0x22711"),
      ("tools/service/ServiceOptions.h", "suite::ToUtf8(ServiceMessages::kPipeName)",
       r'"\\\\.\\Pipe\\iNotoraAssistant"'),
      (INSTALLER, 'MUI_LANGUAGE "English"', 'MUI_LANGUAGE "Danish"'),
      ("packaging/Texts.nsh", "LangString TextWindows ${LANG_KOREAN}", "LangString TextOther ${LANG_KOREAN}"),
      ("README.md", SPOKEN, "some languages")],
     ["the list of settings has sync_customs, which", "the list of settings lacks sync_custom",
      "lumi_camera_beauty_eye is 6, the first run writes 5", "the demo does not draw BeautyKind::kWhite",
      "the sliders has slider_nose, which is in no table", "the gallery lacks img_ten_background_btn",
      "PixoraHomePage.xml: ic_nose.png is drawn nowhere", "SwitchImages.cpp: unticked.png is drawn nowhere",
      "img_five_background_btn is named IDS_LUMI_CAMERA_CAFE, its label is IDS_LUMI_CAMERA_INK",
      "lumi_camera_switch is not listed with its first value 1", "sync_custom is not listed",
      "| 631770001 | `open camera`, `close camera` |", '"STATUS":1,"SMOOTH":5',
      f"the background {BACKGROUND_ROWS - 1} is not explained", "kSwitchStateCode is missing: `0x4B273C`",
      "kFilterDriverInstall of service/SettingNames.h is missing", "PxMainWnd.cpp: writes WM_APP + 1; again",
      "PxDialogWnd.cpp: writes 0x22711 again", "ServiceOptions.h: writes Pipe", "the list of languages has Danish",
      "the first language is Danish", "the texts in Korean lacks TextWindows", "README.md: the number of languages"]),
    # Tables that this check cannot read any more.
    ([(EFFECTS, "EffectId::kFocusPerson, L", "EffectId(2), L"), (BACKGROUNDS, "{3, L", "{0x3, L"),
      (EFFECTS, 'L"slider_eye", L', "kEye, L"),
      ("service/link/ServiceMessages.h", "kSwitchStateCode = 0x4B273C", "kSwitchStateCode = 4925244")],
     [f"{EFFECT_ROWS - 1} of {EFFECT_ROWS} rows of Effect", f"{LEVEL_ROWS - 1} of {LEVEL_ROWS} rows of BeautyLevel",
      f"{BACKGROUND_ROWS - 1} of {BACKGROUND_ROWS} rows of Background", "the numbers of the backgrounds have a gap",
      "only 7 numbers have the form"]),
]
COPIED = (*facts.CODE_FOLDERS, "docs", "packaging", "res/layout", "res/values", "scripts", "README.md")


def broken(changes):
    """The lines of facts.main on a copy of the tree with these changes; a change that changes nothing is an error."""
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        for name in COPIED:
            source, target = facts.ROOT / name, root / name
            target.parent.mkdir(parents=True, exist_ok=True)
            if source.is_dir():
                shutil.copytree(source, target, ignore=shutil.ignore_patterns("*.png"))
            else:
                shutil.copy(source, target)
        (root / "res" / "art").symlink_to(facts.ROOT / "res" / "art")
        for path, old, new in changes:
            text = (root / path).read_text(encoding="utf-8")
            if old not in text:
                return [f"facts_proof.py: {path} does not hold {old}"]
            (root / path).write_text(text.replace(old, new, 1), encoding="utf-8")
        return facts.main(root)


def main():
    if facts.main():
        return []  # the facts are wrong themselves, and said so
    missing = []
    for changes, expected in BREAKAGES:
        lines = broken(changes)
        missing += [f"facts_proof.py: no line says “{line}”; they say: {lines}" for line in expected
                    if not any(line in each for each in lines)]
    return missing
