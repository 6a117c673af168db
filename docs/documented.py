#!/usr/bin/env python3
"""Checks in Doxygen's XML that everything that is exported is described: documented.py XML

Functions, objects, classes, their public members and enumerations must be. Published names that are
no part of the library's own code (scalar types, constants, fields of published records) speak for
themselves.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

KINDS = {"class", "struct", "union", "namespace", "file"}


def described(element):
    return any("".join(element.find(part).itertext()).strip()
               for part in ("briefdescription", "detaileddescription")
               if element.find(part) is not None)


def needs_description(member, compound):
    kind = member.get("kind")
    if member.get("prot") != "public" or member.find("reimplements") is not None:
        return False
    arguments = member.findtext("argsstring") or ""
    if kind == "function":
        return not arguments.endswith(("=delete", "=default", "=0 override"))
    # A field of a record is no exported object.
    return kind == "variable" and compound.get("kind") in ("namespace", "file")


def constructs(member, compound):
    """Constructors and destructors say what their class says, unless there is more to say."""
    name = compound.findtext("compoundname").split("::")[-1]
    return member.findtext("name") in (name, f"~{name}")


def problems(folder):
    for path in sorted(folder.glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().iter("compounddef"):
            if compound.get("kind") not in KINDS or compound.get("prot") == "private":
                continue
            if compound.get("kind") == "class" and not described(compound):
                yield compound, compound.findtext("compoundname")
            for member in compound.iter("memberdef"):
                if (needs_description(member, compound) and not described(member)
                        and not constructs(member, compound)):
                    yield member, (member.findtext("qualifiedname") or member.findtext("name"))


def main(folder):
    found = set()
    for element, name in problems(folder):
        location = element.find("location")
        found.add((location.get("file"), int(location.get("line")), name))
    for file, line, name in sorted(found):
        print(f"include/{file}:{line}: {name} is not described")
    total = sum(1 for path in folder.glob("*.xml")
                for member in ElementTree.parse(path).getroot().iter("memberdef"))
    print(f"{total} declarations, {len(found)} of them not described")
    sys.exit(1 if found or not total else 0)


main(Path(sys.argv[1]))
