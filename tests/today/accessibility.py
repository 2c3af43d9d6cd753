#!/usr/bin/python3
"""Walks through the window as a screen reader does, over the accessibility bus.

Arguments: the programs vantrel-today and vantrel. Needs a session bus and a display of its own.
"""

import os
import subprocess
import sys
import tempfile
import time

import pyatspi

PATIENCE = 60
LINK_ENTRY = "org.vantrel.today.link.desktop"


def wait_for(what, find):
    """The first true answer; the bus tells no more than that something is there now."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if found := find():
                return found
        except Exception:  # what is asked may be gone in this moment
            pass
        time.sleep(0.05)
    sys.exit(f"never seen: {what}")


def shown(role, window):
    """Everything of that role in the window that can be seen, in its order."""

    def matches(node):
        return node.getRole() == role and node.getState().contains(pyatspi.STATE_SHOWING)

    return pyatspi.findAllDescendants(window, matches)


def window_named(start):
    for application in pyatspi.Registry.getDesktop(0):
        for window in application if application else []:
            if window.getRole() == pyatspi.ROLE_FRAME and window.name.startswith(start):
                return window
    return None


def expect(actual, expected):
    if actual != expected:
        sys.exit(f"expected {expected!r}\n but found {actual!r}")


def press(button):
    action = button.queryAction()
    expect([action.getName(i) for i in range(action.nActions)], ["Press", "SetFocus"])
    action.doAction(0)


def walk():
    window = wait_for("the window", lambda: window_named("Next plans"))
    buttons = wait_for("two rows", lambda: shown(pyatspi.ROLE_PUSH_BUTTON, window))
    expect(buttons[0].name, "Show more")
    expect(
        buttons[1].name,
        "<b>Fog</b>, Thursday, July 16, 2026 at 12:52\u202fPM (Asia/Tokyo)",
    )
    expect(
        buttons[1].description,
        "Thursday, July 16, 2026 at 12:52\u202fPM (Asia/Tokyo), "
        "here Thursday, July 16, 2026 at 5:52\u202fAM, tomorrow",
    )

    press(buttons[0])
    wait_for("all rows", lambda: len(shown(pyatspi.ROLE_PUSH_BUTTON, window)) == 4)
    row = shown(pyatspi.ROLE_PUSH_BUTTON, window)[3]
    row.queryComponent().grabFocus()
    wait_for("the focus", lambda: row.getState().contains(pyatspi.STATE_FOCUSED))

    press(row)
    sheet = wait_for("the sheet", lambda: window_named("Moon"))
    texts = wait_for("its texts", lambda: [t.name for t in shown(pyatspi.ROLE_LABEL, sheet)])
    expect(texts[0], "Moon")
    expect(texts[-1], "Two tripods")
    expect([b.name for b in shown(pyatspi.ROLE_PUSH_BUTTON, sheet)], ["Copy link", "Place"])


def main():
    today, vantrel = sys.argv[1:]
    with tempfile.TemporaryDirectory() as home:
        environment = {
            **os.environ,
            "HOME": home,
            "XDG_DATA_HOME": f"{home}/data",
            "XDG_CONFIG_HOME": f"{home}/config",
            "XDG_STATE_HOME": f"{home}/state",
            "XDG_RUNTIME_DIR": home,
            "LC_ALL": "en_US.UTF-8",
            "TZ": "Europe/Madrid",
            "VANTREL_NOW": "2026-07-15T08:00:00Z",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_QPA_PLATFORM": "xcb",
        }
        applications = f"{home}/data/applications"
        os.makedirs(applications)
        open(f"{applications}/{LINK_ENTRY}", "w").close()
        with open(f"{applications}/mimeinfo.cache", "w") as cache:
            cache.write(f"[MIME Cache]\nx-scheme-handler/vantrel={LINK_ENTRY};\n")
        plans = [
            ["<b>Fog</b>", "--date", "2026-07-16 12:52", "--timezone", "Asia/Tokyo"],
            ["Harbour", "--date", "2026-07-17 20:00"],
            ["Moon", "--date", "2026-07-18 21:00", "--notes", "Two tripods"]
            + ["--latitude", "41.3", "--longitude", "2.1"],
        ]
        for plan in plans:
            command = [vantrel, "plan", "add", "--name", *plan]
            subprocess.run(command, env=environment, check=True, stdout=subprocess.DEVNULL)
        program = subprocess.Popen([today], env=environment)
        try:
            walk()
        finally:
            program.terminate()
            program.wait()


main()
