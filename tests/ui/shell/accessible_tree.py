#!/usr/bin/env python3
"""Prints what a screen reader finds in the program, a line each: role|name|states. First as it stands when the result of a
search is shown, then after a press of the first group's box, then after a press of "Remove".

Status 77 where the reader's side of the interface is not installed.
"""
import sys
import time

try:
    import pyatspi
except ImportError:
    sys.exit(77)

TOLD = {"checked", "indeterminate", "selected", "modal"}
PATIENCE = 20  # seconds


def walk(node):
    yield node
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            yield from walk(child)


def program():
    for child in pyatspi.Registry.getDesktop(0):
        if child is not None and child.name == "Orrinvale":
            return child
    return None


def nodes():
    found = program()
    return list(walk(found)) if found else []


def states(node):
    names = {pyatspi.stateToString(each) for each in node.getState().getStates()}
    return " ".join(sorted(names & TOLD))


def wait_for(is_there):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = next((each for each in nodes() if is_there(each)), None)
        if found:
            return found
        time.sleep(0.2)
    return sys.exit("it does not come")


def is_box(node):
    return node.getRoleName() == "check box" and node.name.endswith("x.txt")


def dump(title):
    print("==", title)
    for each in nodes():
        if each.getState().contains(pyatspi.STATE_SHOWING) or each.getRoleName().startswith("table"):
            print(f"{each.getRoleName()}|{each.name}|{states(each)}")


def main():
    box = wait_for(is_box)
    dump("found")
    box.queryAction().doAction(0)
    wait_for(lambda each: is_box(each) and "indeterminate" in states(each))
    dump("ticked")
    wait_for(lambda each: each.getRoleName() == "push button" and each.name == "Remove").queryAction().doAction(0)
    wait_for(lambda each: each.getRoleName() == "alert")
    dump("asked")


if __name__ == "__main__":
    main()
