#!/usr/bin/python3
"""What scripts/check-seam allows and what it tells of: `check_seam_test.py` copies the project's rooms and changes them."""
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent


class SeamTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.tree = Path(scratch.name)
        for folder in ("Orvane", "OrvaneCore", "OrvanePlatform"):
            shutil.copytree(ROOT / folder, self.tree / folder)

    def add(self, path, text):
        file = self.tree / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def check(self):
        """The exit status and what was said."""
        said = subprocess.run([ROOT / "scripts" / "check-seam", self.tree], stdin=subprocess.DEVNULL, text=True,
                              capture_output=True, check=False)
        return said.returncode, said.stderr

    def expect_fault(self, *parts):
        status, said = self.check()
        self.assertEqual(status, 1, said)
        self.assertEqual(len(said.splitlines()), 1, said)
        for part in parts:
            self.assertIn(part, said)

    def test_the_project_holds(self):
        self.assertEqual(self.check(), (0, ""))

    def test_an_arrow_that_the_table_lists_may_be_added(self):
        self.add("OrvaneCore/capture/Added.cpp", '#include "OrvaneCore/platform/Displays.h"\n')
        self.assertEqual(self.check(), (0, ""))

    def test_an_arrow_that_the_table_does_not_list_is_told(self):
        self.add("OrvaneCore/capture/Added.cpp", '\n#include "OrvaneCore/tools/ToolResult.h"\n')
        self.expect_fault("OrvaneCore/capture/Added.cpp:2:", "OrvaneCore/capture does not know OrvaneCore/tools")

    def test_a_room_within_a_room_is_a_room_of_its_own(self):
        self.add("OrvaneCore/marking/Added.h", '#include "OrvaneCore/marking/overlay/OverlayScene.h"\n')
        self.expect_fault("OrvaneCore/marking does not know OrvaneCore/marking/overlay")

    def test_an_arrow_between_technologies_is_told(self):
        self.add("OrvanePlatform/png/Added.cpp", '#include "OrvanePlatform/x11/Atoms.h"\n')
        self.expect_fault("OrvanePlatform/png does not know OrvanePlatform/x11")

    def test_the_core_knows_no_platform(self):
        self.add("OrvaneCore/base/Added.cpp", '#include "OrvanePlatform/Platform.h"\n')
        self.expect_fault("OrvaneCore/base does not know OrvanePlatform")

    def test_the_core_includes_nothing_foreign(self):
        self.add("OrvaneCore/base/Added.cpp", "#include <xcb/xcb.h> // pixels\n")
        self.expect_fault("OrvaneCore/base/Added.cpp:1:", "<xcb/xcb.h>")

    def test_a_folder_without_a_line_in_the_table_is_told(self):
        self.add("OrvaneCore/attic/Added.cpp", "\n")
        self.expect_fault("OrvaneCore/attic/Added.cpp", "lies in no room")

    def test_only_the_platform_asks_for_the_system(self):
        question = "#ifdef Q_OS_LINUX\n#endif\n"
        self.add("OrvanePlatform/posix/Added.cpp", question)
        self.assertEqual(self.check(), (0, ""))
        self.add("tests/unit/Added.cpp", question)
        self.expect_fault("tests/unit/Added.cpp:1: only OrvanePlatform may ask")

    def test_only_the_platform_knows_how_windows_are_on_x11(self):
        uses = ("Qt::X11BypassWindowManagerHint", "Qt::BypassWindowManagerHint", "Qt::WA_X11NetWmWindowTypeDock",
                "winId()", "effectiveWinId ()", "QNativeInterface::QX11Application")
        self.add("OrvanePlatform/x11/Added.cpp", "\n".join(uses))
        self.add("tests/desktop/Added.cpp", "\n".join(uses))
        self.assertEqual(self.check(), (0, ""))
        for folder in ("OrvaneCore/surface", "Orvane"):
            for use in uses:
                with self.subTest(folder=folder, use=use):
                    self.add(f"{folder}/Added.cpp", f"\n\nauto used = {use};\n")
                    self.expect_fault(f"{folder}/Added.cpp:3: only OrvanePlatform may use ")
                    (self.tree / folder / "Added.cpp").unlink()

    def test_names_that_only_look_like_those_of_x11_are_not_told(self):
        self.add("OrvaneCore/surface/Added.cpp", "auto winIdea = twinId(); // the winId of a widget\n")
        self.assertEqual(self.check(), (0, ""))

    def test_an_empty_folder_is_no_project(self):
        for folder in ("Orvane", "OrvaneCore", "OrvanePlatform"):
            shutil.rmtree(self.tree / folder)
        self.expect_fault("no sources found")


unittest.main()
