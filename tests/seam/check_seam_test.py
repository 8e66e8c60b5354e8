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

    def test_an_empty_folder_is_no_project(self):
        for folder in ("Orvane", "OrvaneCore", "OrvanePlatform"):
            shutil.rmtree(self.tree / folder)
        self.expect_fault("no sources found")


unittest.main()
