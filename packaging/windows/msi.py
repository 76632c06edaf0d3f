"""Makes a Windows Installer package from a staged folder: wixl writes the files and the usual tables, msibuild those
that wixl does not know (permissions, files to remove) and the rows that it writes otherwise than they are wanted."""
import datetime
import os
import shutil
import subprocess
import sys
from xml.sax.saxutils import quoteattr

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
from release import DESCRIPTION, MAKER, PRODUCT, TOP, VERSION, identifier, source_time, stamp  # noqa: E402

REGISTRY_KEY = f"Software\\{MAKER}\\{PRODUCT}"

# Attributes of the Upgrade table, from Windows Installer's documentation.
MIGRATE_FEATURES, MIN_INCLUSIVE, ONLY_DETECT = 0x1, 0x100, 0x2
# The locator of a registry value: raw, and in the 64-bit view.
RAW_VALUE, VIEW_64 = 2, 0x10
# When a row of the RemoveFile table counts: on removal.
ON_REMOVE = 2
SCRIPTS = ("Create_Batch_Database", "Create_Batch_Stored_Procedures", "Create_Replication_Stored_Procedures",
           "Insert_Default_Data")
# GENERIC_ALL, as the LockPermissions table takes it.
FULL_RIGHTS = 0x10000000


def msi_version(version):
    """Windows Installer compares the first three numbers of a version alone; the fourth goes into the third, so that
    each build replaces the one before."""
    major, minor, patch, build_number = (int(number) for number in version.split("."))
    return f"{major}.{minor}.{patch * 1000 + build_number}"


class Names:
    """Identifiers of rows: short, and the same in each build."""

    def __init__(self):
        self._numbers = {}

    def of(self, kind, path):
        return f"{kind}{self._numbers.setdefault((kind, path), len(self._numbers))}"


def _guid(text):
    return text.strip("{}")


def _tree(staged, folder, arch, names, indent):
    """The directories, components and files below `folder`, as lines of wixl's XML; and the components' names."""
    lines, components = [], []
    pad = " " * indent
    here = os.path.join(staged, folder)
    entries = sorted(os.listdir(here))
    win64 = ' Win64="yes"' if arch == "x64" else ""
    for name in entries:
        path = os.path.join(folder, name)
        if os.path.isdir(os.path.join(here, name)):
            inner, found = _tree(staged, path, arch, names, indent + 2)
            lines += [f"{pad}<Directory Id={quoteattr(names.of('d', path))} Name={quoteattr(name)}>", *inner,
                      f"{pad}</Directory>"]
            components += found
            continue
        component, file = names.of("c", path), names.of("f", path)
        components.append(component)
        lines += [f"{pad}<Component Id={quoteattr(component)} Guid={quoteattr(_guid(identifier('file', arch, path)))}{win64}>",
                  f"{pad}  <File Id={quoteattr(file)} Name={quoteattr(name)} Source={quoteattr(path)} KeyPath=\"yes\">"]
        lines += SHORTCUTS.get(path, lambda _: [])(pad)
        lines.append(f"{pad}  </File>")
        if path == "KVLSQLDbMgr.exe":
            lines.append(f'{pad}  <RegistryValue Root="HKLM" Key={quoteattr(REGISTRY_KEY)} Name="Folder" Type="string" '
                         'Value="[INSTALLFOLDER]"/>')
        lines.append(f"{pad}</Component>")
    return lines, components


def _shortcut(identity, name, working_folder=True):
    folder = ' WorkingDirectory="INSTALLFOLDER"' if working_folder else ""
    return lambda pad: [f'{pad}    <Shortcut Id="{identity}" Directory="MENU" Name={quoteattr(name)}{folder}/>']


SHORTCUTS = {"KVLSQLDbMgr.exe": _shortcut("sProgram", PRODUCT),
             os.path.join("manual", "index.html"): _shortcut("sManual", PRODUCT + " Manual", False)}


def _description(staged, arch, version, names):
    code = identifier("upgrade", arch)
    tree, components = _tree(staged, "", arch, names, 12)
    win64 = ' Win64="yes"' if arch == "x64" else ""
    programs = "ProgramFiles64Folder" if arch == "x64" else "ProgramFilesFolder"
    references = "\n".join(f'      <ComponentRef Id="{name}"/>' for name in [*components, "cData", "cMenu"])
    return f"""<?xml version="1.0" encoding="utf-8"?>
<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">
  <Product Id="{_guid(identifier('product', arch, version))}" Name={quoteattr(PRODUCT)} Language="1033"
           Version="{msi_version(version)}" Manufacturer={quoteattr(MAKER)} UpgradeCode="{_guid(code)}">
    <Package InstallerVersion="405" Compressed="yes" InstallScope="perMachine" Description={quoteattr(DESCRIPTION)}
             Manufacturer={quoteattr(MAKER)} Comments={quoteattr(PRODUCT + ' ' + version)}/>
    <Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>
    <Upgrade Id="{_guid(code)}">
      <UpgradeVersion Property="OLDERVERSION" Minimum="0.0.0" Maximum="{msi_version(version)}"/>
      <UpgradeVersion Property="NEWERVERSION" Minimum="{msi_version(version)}" OnlyDetect="yes"/>
    </Upgrade>
    <Condition Message={quoteattr('A newer version of ' + PRODUCT + ' is installed.')}>NOT NEWERVERSION</Condition>
    <Property Id="INSTALLFOLDER">
      <RegistrySearch Id="OldFolder" Root="HKLM" Key={quoteattr(REGISTRY_KEY)} Name="Folder" Type="raw"/>
    </Property>
    <Property Id="ARPNOMODIFY" Value="1"/>
    <Property Id="ARPPRODUCTICON" Value="program.ico"/>
    <Icon Id="program.ico" SourceFile="program.ico"/>
    <InstallExecuteSequence><RemoveExistingProducts After="InstallExecute"/></InstallExecuteSequence>
    <Directory Id="TARGETDIR" Name="SourceDir">
      <Directory Id="ProgramMenuFolder">
        <Directory Id="MENU" Name="Lotkeeper">
          <Component Id="cMenu" Guid="{_guid(identifier('menu', arch))}"{win64}>
            <RegistryValue Root="HKLM" Key={quoteattr(REGISTRY_KEY)} Name="Menu" Type="string" Value="1" KeyPath="yes"/>
          </Component>
        </Directory>
      </Directory>
      <Directory Id="{programs}">
        <Directory Id="LOTKEEPER" Name="Lotkeeper">
          <Directory Id="INSTALLFOLDER" Name="Database Manager">
{chr(10).join(tree)}
            <Directory Id="DATA" Name="Data">
              <Component Id="cData" Guid="{_guid(identifier('data', arch))}"{win64}>
                <CreateFolder/>
              </Component>
            </Directory>
          </Directory>
        </Directory>
      </Directory>
    </Directory>
    <Feature Id="All" Level="1" Title={quoteattr(PRODUCT)}>
{references}
    </Feature>
  </Product>
</Wix>
"""


def _frozen(command, folder):
    """Runs a tool that writes the time of its run into the package, at the time of the source."""
    clock = datetime.datetime.fromtimestamp(source_time(), datetime.timezone.utc).strftime("%Y-%m-%d %H:%M:%S")
    run = subprocess.run(["faketime", "-f", clock, *command], cwd=folder, env=dict(os.environ, TZ="UTC"),
                         capture_output=True, text=True)
    if run.returncode != 0:
        raise RuntimeError(f"{' '.join(command[:4])} failed:\n{run.stdout}{run.stderr}")


def _import(folder, table, types, keys, rows):
    """Writes a whole table, in the place of the one that wixl has written. `types` are those of the columns by name."""
    lines = [list(types), list(types.values()), [table, *keys], *rows]
    with open(os.path.join(folder, table + ".idt"), "w", encoding="ascii", newline="\r\n") as file:
        file.writelines("\t".join(str(field) for field in line) + "\n" for line in lines)
    _frozen(["msibuild", "product.msi", "-i", table + ".idt"], folder)


def _mend(folder, arch, version, names):
    """The tables and rows that wixl does not write."""
    # Those who may run the program write Data, others do not read it: it holds passwords.
    _import(folder, "LockPermissions",
            {"LockObject": "s72", "Table": "s32", "Domain": "S255", "User": "s255", "Permission": "i4"},
            ("LockObject", "Table", "Domain", "User"),
            [("DATA", "CreateFolder", "", user, FULL_RIGHTS) for user in ("Administrators", "SYSTEM")])
    code, number = identifier("upgrade", arch), msi_version(version)
    _import(folder, "Upgrade",
            {"UpgradeCode": "s38", "VersionMin": "S20", "VersionMax": "S20", "Language": "S255", "Attributes": "i4",
             "Remove": "S255", "ActionProperty": "s72"},
            ("UpgradeCode", "VersionMin", "VersionMax", "Language", "Attributes"),
            [(code, "0.0.0", number, "", MIN_INCLUSIVE | MIGRATE_FEATURES, "", "OLDERVERSION"),
             (code, number, "", "", ONLY_DETECT, "", "NEWERVERSION")])
    # The modified scripts and outputs go with the program. Wine takes "*" for a name, so the usual ones are named too.
    _import(folder, "RemoveFile",
            {"FileKey": "s72", "Component_": "s72", "FileName": "L255", "DirProperty": "s72", "InstallMode": "i2"},
            ("FileKey",),
            [*((f"rFile{number}", "cData", name, "DATA", ON_REMOVE)
               for number, name in enumerate(["*", *(script + end for script in SCRIPTS for end in (".sql", ".txt"))])),
             ("rFolder", "cData", "", "DATA", ON_REMOVE), ("rMenu", "cMenu", "", "MENU", ON_REMOVE)])
    queries = [
        # A shortcut to the file itself: an advertised one would have Windows look after the installation at each start.
        f"UPDATE `Shortcut` SET `Target` = '[#{names.of('f', 'KVLSQLDbMgr.exe')}]' WHERE `Shortcut` = 'sProgram'",
        f"UPDATE `Shortcut` SET `Target` = '[#{names.of('f', os.path.join('manual', 'index.html'))}]' WHERE "
        "`Shortcut` = 'sManual'",
    ]
    if arch == "x64":
        queries.append(f"UPDATE `RegLocator` SET `Type` = {RAW_VALUE | VIEW_64} WHERE `Signature_` = 'OldFolder'")
    for query in queries:
        _frozen(["msibuild", "product.msi", "-q", query], folder)
    _frozen(["msibuild", "product.msi", "-s", PRODUCT, MAKER, f"{'x64' if arch == 'x64' else 'Intel'};1033",
             identifier("package", arch, version, str(source_time()))], folder)


def build(staged, arch, target, work, version=VERSION):
    """Writes the package `target` from the folder `staged`; `arch` is "x64" or "x86". Overwrites `target` and `work`."""
    if os.path.exists(work):
        shutil.rmtree(work)
    shutil.copytree(staged, work)
    shutil.copyfile(os.path.join(TOP, "src", "main", "icons", "program.ico"), os.path.join(work, "program.ico"))
    names = Names()
    description = _description(staged, arch, version, names)
    with open(os.path.join(work, "product.wxs"), "w", encoding="utf-8") as file:
        file.write(description)
    stamp(work)
    if os.path.exists(target):
        os.remove(target)
    _frozen(["wixl", "--arch", arch, "--output", "product.msi", "product.wxs"], work)
    _mend(work, arch, version, names)
    os.replace(os.path.join(work, "product.msi"), target)
