"""The installer, by NSIS."""
import os
import shutil
import subprocess

import staging

HERE = os.path.dirname(os.path.abspath(__file__))
PLUGINS = "/usr/share/nsis/Plugins/amd64-unicode"
USED_PLUGINS = ("System.dll", "nsDialogs.dll", "nsExec.dll")


def write_macro(folder, path):
    """UnpackFiles: every file into WORK\\new, and the list beside it."""
    literal = lambda text: text.replace("$", "$$")
    lines = ["!macro UnpackFiles"]
    current = None
    for name in sorted(staging.files_below(folder), key=lambda n: (os.path.dirname(n), n)):
        if os.path.dirname(name) != current:
            current = os.path.dirname(name)
            target = "${WORK}\\new" + ("\\" + literal(staging.windows(current)) if current else "")
            lines.append(f'    SetOutPath "{target}"')
        lines.append(f'    File "{literal(os.path.join(folder, name))}"')
    lines += ['    SetOutPath "${WORK}"', f'    File "/oname=files.txt" "{literal(os.path.join(folder, staging.LIST))}"',
              "!macroend"]
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")


def draw_picture(build, path):
    """The picture at the side of the first and last page: the program's icon on its colours."""
    subprocess.run(["convert", "-size", "164x314", "gradient:#5b9bff-#0b3bb8", os.path.join(build, "res", "icon-128.png"),
                    "-gravity", "center", "-composite", "-alpha", "off", f"BMP3:{path}"], check=True)
    return path


def signed_plugins(signer, scratch):
    """Of the plug-ins, which the installer unpacks and loads, copies that are signed."""
    folder = os.path.join(scratch, "plugins")
    os.makedirs(folder)
    for name in USED_PLUGINS:
        shutil.copy2(os.path.join(PLUGINS, name), folder)
    signer.sign_modules(folder)
    return folder


def make(build, folder, scratch, helper, version, upgrade_code, time, signer, target):
    """`folder` holds what is installed, `helper` is PixoraSetupHelper.exe; `scratch` is a folder to work in."""
    names = staging.files_below(folder)
    size = sum(os.path.getsize(os.path.join(folder, name)) for name in names)
    program = shutil.copytree(folder, os.path.join(scratch, "program"))
    # The uninstaller is made on the machine, and is one of the files that a next version takes away.
    staging.write_list(sorted([*names, staging.LIST, staging.UNINSTALLER]), os.path.join(program, staging.LIST))
    staging.set_times(program, time)
    macro = os.path.join(scratch, "files.nsh")
    write_macro(program, macro)
    numbers = (version.split(".") + ["0", "0", "0"])[:4]
    defines = {"VERSION": version, "VERSION_NUMBERS": ".".join(numbers), "VERSION_MAJOR": numbers[0],
               "VERSION_MINOR": numbers[1], "SIZE_KB": (size + 1023) // 1024, "FILE_LISTS": macro, "HELPER": helper,
               "UPGRADE_CODE": upgrade_code, "TARGET": target, "ICON": os.path.join(build, "res", "Pixora.ico"),
               "PICTURE": draw_picture(build, os.path.join(scratch, "picture.bmp"))}
    if signer.command:
        defines["SIGN"] = signer.command
        defines["PLUGINS"] = signed_plugins(signer, scratch)
    subprocess.run(["makensis", "-V2", "-WX", *[f"-D{name}={value}" for name, value in defines.items()],
                    os.path.join(HERE, "Pixora.nsi")], check=True, env={**os.environ, **signer.environment()})
    signer.sign(target)
    return target
