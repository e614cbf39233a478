#!/usr/bin/env python3
"""A person's hand on the program, by what a screen reader finds of it: presses buttons, ticks boxes, clicks rows, types, at random from a
seed. It is told what to do line by line and answers each line with one of its own:

  press NAME     presses the first button that shows and is so named, a star at its end stands for any rest ("a|b": the first of
                 these that there is); "none" where there is none
  choose K N     the Nth choice of the Kth box with choices; a negative K counts from the last
  key NAME       presses a key
  play N         N actions on what shows: "N actions"
  names          what shows
"""
import fnmatch
import random
import sys
import time

import pyatspi
from gi.repository import GLib

BUTTONS = {"push button", "toggle button", "check box", "radio button", "page tab", "combo box"}
LISTS = {"table", "tree table", "tree", "list", "list box", "table cell"}
FIELDS = {"text", "entry", "spin button"}
# What ends the program, or would leave it for another.
SPARED = ("Quit", "Beenden", "Orrinvale beenden")
KEYS = {"Tab": 0xff09, "Return": 0xff0d, "Escape": 0xff1b, "Left": 0xff51, "Up": 0xff52, "Right": 0xff53, "Down": 0xff54,
        "Page_Up": 0xff55, "Page_Down": 0xff56, "Home": 0xff50, "End": 0xff57, "space": 0x20, "BackSpace": 0xff08}
OFTEN = ("Down", "Down", "Up", "space", "Tab", "Left", "Right", "Page_Down", "Page_Up", "Home", "End", "Escape")


def program():
    return next((each for each in pyatspi.Registry.getDesktop(0) if each is not None and each.name == "Orrinvale"), None)


class Thing:
    """What shows: its role, its name, where it is on the screen."""

    def __init__(self, node, role):
        self.node, self.role, self.name = node, role, node.name
        place = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        self.left, self.top, self.width, self.height = place.x, place.y, place.width, place.height

    def middle(self):
        return self.left + self.width // 2, self.top + self.height // 2


def things_below(node, found, depth=0):
    """Rows are not looked at: there are thousands."""
    for index in range(min(node.childCount, 200)):
        child = node.getChildAtIndex(index)
        if child is None or not child.getState().contains(pyatspi.STATE_SHOWING):
            continue
        role = child.getRoleName()
        if role in BUTTONS | LISTS | FIELDS and child.getState().contains(pyatspi.STATE_ENABLED):
            thing = Thing(child, role)
            if thing.width > 0 and thing.height > 0:
                found.append(thing)
        if role not in LISTS and depth < 30:
            things_below(child, found, depth + 1)


def showing():
    """Of the window that is in front of the others: of a question, if there is one."""
    application = program()
    windows = [] if application is None else [each for each in application if each is not None]
    windows = [each for each in windows if each.getState().contains(pyatspi.STATE_SHOWING)]
    modal = [each for each in windows if each.getState().contains(pyatspi.STATE_MODAL)]
    active = [each for each in windows if each.getState().contains(pyatspi.STATE_ACTIVE)]
    found = []
    for window in (modal or active or windows)[-1:]:
        things_below(window, found)
    return found


class Hand:
    def __init__(self):
        self.chance = random.Random(1)
        self.things = []

    def key(self, name):
        pyatspi.Registry.generateKeyboardEvent(KEYS.get(name) or ord(name), None, pyatspi.KEY_SYM)

    def click(self, x, y, how="b1c"):
        pyatspi.Registry.generateMouseEvent(x, y, how)

    def press(self, names):
        for name in names.split("|"):
            for thing in showing():
                if thing.role in BUTTONS and fnmatch.fnmatchcase(thing.name.replace("&", ""), name):
                    self.click(*thing.middle())
                    return f"pressed {thing.name}"
        return "none"

    def choose(self, box, number):
        """By the keyboard, which brings the box into sight."""
        boxes = [each for each in showing() if each.role == "combo box"]
        if not -len(boxes) <= box < len(boxes):
            return "none"
        boxes[box].node.queryComponent().grabFocus()
        time.sleep(0.2)
        for key in ["Home"] + ["Down"] * number:
            self.key(key)
        return "chosen"

    def act(self):
        """One action. What shows is looked at anew after what may have changed it."""
        if not self.things:
            self.things = showing()
        chance = self.chance
        kind = chance.random()
        lists = [each for each in self.things if each.role in LISTS and each.height > 40]
        buttons = [each for each in self.things if each.role in BUTTONS and each.name.replace("&", "") not in SPARED]
        fields = [each for each in self.things if each.role in FIELDS]
        if kind < 0.35 and buttons:
            self.click(*chance.choice(buttons).middle())
            self.things = []
        elif kind < 0.65 and lists:
            area = chance.choice(lists)
            x = area.left + chance.randrange(8, max(9, min(area.width, 400)))
            y = area.top + chance.randrange(8, max(9, area.height - 4))
            self.click(x, y, chance.choice(("b1c", "b1c", "b1c", "b1d", "b4c", "b5c", "b5c", "b3c")))
        elif kind < 0.68 and fields:
            self.click(*chance.choice(fields).middle())
            for letter in chance.choice(("a", "log", "12", "cache")):
                self.key(letter)
            self.key(chance.choice(("Return", "BackSpace", "Escape")))
        else:
            self.key(chance.choice(OFTEN))
            if chance.random() < 0.3:
                self.things = []

    def play(self, count):
        done = 0
        for _ in range(count):
            try:
                self.act()
            except (GLib.Error, NotImplementedError, AttributeError):  # it went while it was looked at
                self.things = []
            done += 1
        return f"{done} actions"


def main():
    hand = Hand()
    for line in sys.stdin:
        word, _, rest = line.strip().partition(" ")
        try:
            if word == "press":
                answer = hand.press(rest)
            elif word == "choose":
                answer = hand.choose(*map(int, rest.split()))
            elif word == "play":
                answer = hand.play(int(rest))
            elif word == "names":
                answer = "|".join(f"{each.role}:{each.name}@{each.left},{each.top}+{each.width}x{each.height}" for each in showing())
            elif word == "key":
                hand.key(rest)
                answer = "pressed"
            else:
                answer = f"unknown: {word}"
        except GLib.Error as error:
            answer = f"lost: {error}"
        hand.things = []
        print(answer.replace("\n", " "), flush=True)


if __name__ == "__main__":
    main()
