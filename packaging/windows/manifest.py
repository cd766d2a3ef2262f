#!/usr/bin/env python3
"""manifest.py IDL VERSION ARCHITECTURE: prints the manifest by which programs use quorix.dll unregistered.

ARCHITECTURE is x86 or amd64.
"""
import re
import sys

LIBRARY = re.compile(r"uuid\(([^)]*)\),\s*version\(([\d.]+)\)")
CLASS = re.compile(r"\[uuid\(([^)]*)\)([^\]]*)\]\s*coclass (\w+)")

ASSEMBLY = """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="Quorix.Automation" version="{version}.0" processorArchitecture="{architecture}"/>
  <file name="quorix.dll">
    <typelib tlbid="{{{library}}}" version="{library_version}" helpdir=""/>
{classes}
  </file>
</assembly>"""
COM_CLASS = """    <comClass clsid="{{{}}}" tlbid="{{{}}}" progid="Quorix.{}" threadingModel="Apartment"/>"""


def main(idl_file, version, architecture):
    with open(idl_file, encoding="utf-8") as source:
        idl = source.read()
    library, library_version = LIBRARY.search(idl).groups()
    creatable = [(id_, name) for id_, rest, name in CLASS.findall(idl) if "noncreatable" not in rest]
    classes = "\n".join(COM_CLASS.format(id_, library, name) for id_, name in creatable)
    print(ASSEMBLY.format(version=version, architecture=architecture, library=library,
                          library_version=library_version, classes=classes))


main(*sys.argv[1:])
