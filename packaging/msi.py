"""The package for managed machines, by wixl; what wixl cannot say is written into its tables afterwards by msibuild."""
import hashlib
import os
import re
import shutil
import subprocess
import uuid
from datetime import datetime, timezone
from xml.sax.saxutils import quoteattr

import pe
import staging

HERE = os.path.dirname(os.path.abspath(__file__))
# Identifiers are made from names, so that the same file has the same one in every version.
SPACE = uuid.UUID("5d0e2a6e-6a53-4c56-9f0e-7a1f1f1d4a11")
# Everybody may read and make folders; what somebody makes is theirs (setup/SharedFolders.cpp has the same).
RIGHTS = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)(A;;0x4;;;BU)(A;OICIIO;GA;;;CO)"
ENGLISH = "1033"


def identifier(name):
    return str(uuid.uuid5(SPACE, name.lower())).upper()


def short(kind, name):
    """A name inside the package."""
    return kind + hashlib.sha256(name.encode()).hexdigest()[:16]


def write_files(folder, path):
    """Directories and components, one component a file."""
    lines, components = [], []

    def add(relative, indent):
        full = os.path.join(folder, relative)
        for name in sorted(os.listdir(full)):
            inside = os.path.join(relative, name)
            if os.path.isdir(os.path.join(folder, inside)):
                lines.append(f"{indent}<Directory Id={quoteattr(short('D', inside))} Name={quoteattr(name)}>")
                add(inside, indent + " ")
                lines.append(f"{indent}</Directory>")
                continue
            component = short("C", inside)
            components.append(component)
            lines.append(f"{indent}<Component Id='{component}' Guid='{identifier(inside)}' Win64='yes'>")
            lines.append(f"{indent} <File Id='{short('F', inside)}' Name={quoteattr(name)} KeyPath='yes' "
                         f"Source={quoteattr(os.path.join('program', inside))}/>")
            lines.append(f"{indent}</Component>")

    add("", "   ")
    with open(path, "w", encoding="utf-8") as file:
        file.write("<?xml version='1.0' encoding='utf-8'?>\n<Include>\n")
        file.write(" <DirectoryRef Id='INSTALLDIR'>\n" + "\n".join(lines) + "\n </DirectoryRef>\n")
        file.write(" <Feature Id='Files' Level='1'>\n")
        file.writelines(f"  <ComponentRef Id='{name}'/>\n" for name in components)
        file.write(" </Feature>\n</Include>\n")


class Table:
    """A table of a package as text: three lines of heading, then one line a row."""

    def __init__(self, package, name, *new):
        """`new`: names, types and keys of the columns, and the rows, of a table that is not there yet."""
        self.package, self.name = package, name
        if new:
            *self.heading, self.rows = new
            return
        text = subprocess.check_output(["msiinfo", "export", package, name], text=True)
        lines = text.replace("\r\n", "\n").rstrip("\n").split("\n")
        self.heading, self.rows = lines[:3], [line.split("\t") for line in lines[3:]]

    def write(self, scratch):
        path = os.path.join(scratch, f"{self.name}.idt")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.writelines(line + "\r\n" for line in [*self.heading, *("\t".join(row) for row in self.rows)])
        subprocess.run(["msibuild", self.package, "-i", path], check=True)
        os.remove(path)


def write_versions(package, scratch, folder):
    """A file with a version is replaced by a newer one; wixl writes none, and the system would then never replace it."""
    versions = {short("F", name): pe.read(os.path.join(folder, name)).version()
                for name in staging.files_below(folder) if pe.is_module(os.path.join(folder, name))}
    files = Table(package, "File")
    for row in files.rows:
        if versions.get(row[0]):
            row[4:6] = versions[row[0]], ENGLISH
    files.write(scratch)
    hashes = Table(package, "MsiFileHash")
    hashes.rows = [row for row in hashes.rows if not versions.get(row[0])]
    hashes.write(scratch)


# Type 1 is a function of a DLL in the package; 1024 makes it a step of the installation's script, 2048 lets the system
# and not the user run it.
ACTIONS = [["CheckFolders", "1", "Actions", "CheckFolders"], ["MakeFolders", "3073", "Actions", "MakeFolders"]]
# The folders are checked first of all and made before others can; the old version goes inside the transaction that
# brings the new one, so that it comes back when that fails.
SEQUENCE = [["CheckFolders", "NOT REMOVE", "110"], ["RemoveExistingProducts", "", "1510"],
            ["MakeFolders", "NOT REMOVE", "1520"]]
# Comms keeps the rights that it has: other programs use it too.
FOLDER_RIGHTS = [["Comms", "COMMSDIR", "CreateFolder", RIGHTS, "NOT COMMSTHERE"],
                 ["Pictures", "PICTURESDIR", "CreateFolder", RIGHTS, ""]]


def write_rest(package, scratch):
    actions = Table(package, "CustomAction")
    actions.rows += [row + [""] * (len(actions.heading[0].split("\t")) - 4) for row in ACTIONS]
    actions.write(scratch)
    sequence = Table(package, "InstallExecuteSequence")
    named = {row[0] for row in SEQUENCE}
    sequence.rows = [row for row in sequence.rows if row[0] not in named] + SEQUENCE
    sequence.write(scratch)
    search = Table(package, "AppSearch")
    search.rows.append(["COMMSTHERE", "CommsThere"])
    search.write(scratch)
    # What is made by the package goes with it, when it is empty; the folder above may be other programs' too.
    folders = Table(package, "CreateFolder")
    folders.rows += [["INSTALLDIR", "Registry"], ["VELMORADIR", "Registry"]]
    folders.write(scratch)
    Table(package, "DrLocator", "Signature_\tParent\tPath\tDepth", "s72\tS72\tS255\tI2",
          "DrLocator\tSignature_\tParent\tPath", [["CommsThere", "", "[CommonAppDataFolder]Comms", "0"]]).write(scratch)
    Table(package, "MsiLockPermissionsEx", "MsiLockPermissionsEx\tLockObject\tTable\tSDDLText\tCondition",
          "s72\ts72\ts32\ts0\tS255", "MsiLockPermissionsEx\tMsiLockPermissionsEx", FOLDER_RIGHTS).write(scratch)


def write_summary(package, scratch, time):
    """The time of the commit, and an identifier of the package made from its content: other content, other identifier."""
    digest = hashlib.sha256()
    # It leaves files in the folder where it runs.
    told = lambda *command: subprocess.check_output(["msiinfo", command[0], package, *command[1:]], cwd=scratch)
    for name in sorted(told("tables").decode().split()):
        if name != "_SummaryInformation":
            digest.update(told("export", name))
    for name in sorted(told("streams").decode().split()):
        if "SummaryInformation" not in name:
            digest.update(told("extract", name))
    table = Table(package, "_SummaryInformation")
    values = {"9": "{" + identifier(digest.hexdigest()) + "}"}
    values["12"] = values["13"] = datetime.fromtimestamp(time, timezone.utc).strftime("%Y/%m/%d %H:%M:%S")
    for row in table.rows:
        row[1] = values.get(row[0], row[1])
    table.write(scratch)


def make(build, folder, scratch, actions, version, upgrade_code, time, target):
    """`folder` holds what is installed, `actions` is PixoraSetupActions.dll; `scratch` is a folder to work in."""
    if not re.fullmatch(r"\d+\.\d+\.\d+", version):
        raise ValueError(f"the system compares three numbers of a version, and {version} has not three")
    program = shutil.copytree(folder, os.path.join(scratch, "program"))
    staging.write_list([*staging.files_below(folder), staging.LIST], os.path.join(program, staging.LIST))
    staging.set_times(program, time)
    for source, name in ((actions, "PixoraSetupActions.dll"), (os.path.join(build, "res", "Pixora.ico"), "Pixora.ico"),
                         (os.path.join(HERE, "Pixora.wxs"), "Pixora.wxs")):
        shutil.copy2(source, os.path.join(scratch, name))
    write_files(program, os.path.join(scratch, "files.wxi"))
    defines = {"VERSION": version, "PRODUCT_CODE": "{" + identifier(f"product {version}") + "}",
               "UPGRADE_CODE": upgrade_code}
    for name in ("comms", "pictures", "registry", "shortcut"):
        defines[f"{name.upper()}_COMPONENT"] = "{" + identifier(f"component {name}") + "}"
    package = os.path.join(scratch, "package.msi")
    options = [word for name, value in defines.items() for word in ("-D", f"{name}={value}")]
    subprocess.run(["wixl", "-a", "x64", *options, "-o", package, "Pixora.wxs"], check=True, cwd=scratch)
    write_versions(package, scratch, program)
    write_rest(package, scratch)
    write_summary(package, scratch, time)
    shutil.move(package, target)
    return target
