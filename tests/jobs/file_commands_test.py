#!/usr/bin/env python3
"""File commands of System steps in hostile trees: links, depth, numbers, other file systems,
rights. Under --windows what only Linux knows is skipped."""
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import WINDOWS, Scene, run_tests  # noqa: E402

NOBODY = 65534
LINUX_ONLY = unittest.skipIf(WINDOWS, "links and rights of Linux")


class FileCommands(Scene):
    def run_command(self, command, message="", **keys):
        """Runs one command and checks what it says; names may be $A$, $B$ for odd ones."""
        arguments = [f"${name}$={value}" for name, value in keys.items() if len(name) == 1]
        lines = [f"{name}={value}" for name, value in keys.items() if len(name) > 1]
        job = "\n".join(["Step 1", "System", f"Command={command}", *lines, ""])
        user = {"user": NOBODY, "group": NOBODY} if getattr(self, "unprivileged", False) else {}
        ended = self.run_job(job, *arguments, **user)
        self.assertEqual((ended.status, ended.output.decode().rstrip("\r\n")),
                         (2 if message else 0, message))

    def tree(self, name):
        """Each entry below a folder with what it is: a text, a link's target, or None."""
        root = self.path / name
        return {str(path.relative_to(root)): "-> " + os.readlink(path) if path.is_symlink()
                else None if path.is_dir() else path.read_text() for path in root.rglob("*")}

    @LINUX_ONLY
    def test_links_are_copied_as_links_and_never_followed(self):
        outside = self.write("outside/kept", "kept")
        self.write("from/file", "new")
        self.write("from/sub/inner", "new")
        (self.path / "from/to file").symlink_to("../outside/kept")
        (self.path / "from/to folder").symlink_to("../outside")
        (self.path / "from/nowhere").symlink_to("gone")
        self.write("to/to file", "old")
        (self.path / "to/file").symlink_to("../outside/kept")  # would lead the copy out
        self.run_command("CopyFolder", From="from", To="to")
        self.assertEqual(self.tree("to"), {
            "file": "new", "sub": None, "sub/inner": "new", "to file": "-> ../outside/kept",
            "to folder": "-> ../outside", "nowhere": "-> gone"})
        shutil.rmtree(self.path / "to/sub")
        (self.path / "to/sub").symlink_to("../outside")
        self.run_command("CopyFolder", "CopyFolder: Not a directory", From="from", To="to")
        self.run_command("DeleteFolder", Folder="to")
        self.assertFalse((self.path / "to").exists())
        self.assertEqual((outside.read_text(), os.listdir(outside.parent)), ("kept", ["kept"]))

    @LINUX_ONLY
    def test_delete_folder_does_not_take_a_link_for_a_folder(self):
        self.write("outside/kept")
        (self.path / "link").symlink_to("outside")
        for name in ("link", "link/", "link//"):
            self.run_command("DeleteFolder", "DeleteFolder: folder to be deleted does not exist",
                             Folder=name)
        protected = "DeleteFolder: the folder is a root, '..' or holds the current folder"
        for name in ("/", "//", ".", "..", "./", "link/.", "outside/..", self.path,
                     self.path.parent, f"{self.path}/link/.."):
            self.run_command("DeleteFolder", protected, Folder=name)
        self.assertTrue((self.path / "outside/kept").exists())
        self.run_command("DeleteFolder", Folder=f"{self.path}/link/../outside")
        self.assertFalse((self.path / "outside").exists())

    def test_deep_and_wide_folders(self):
        # The shell of Windows takes no longer paths, and Wine's takes its time.
        deep = "/".join(["from"] + [f"{number}" for number in range(50)])
        self.write(f"{deep}/.hidden", "deep")
        for number in range(100, 600 if WINDOWS else 10_100):
            (self.path / "from" / f"{number}").touch()
        (self.path / "from/empty").mkdir()
        self.run_command("CopyFolder", From="from", To="a/b/c")
        self.assertEqual(self.tree("a/b/c"), self.tree("from"))
        self.run_command("MoveFolder", From="a/b/c", To="moved")
        self.assertEqual(self.tree("moved"), self.tree("from"))
        self.run_command("DeleteFolder", Folder="moved")
        self.assertFalse((self.path / "moved").exists())
        (self.path / "nothing").mkdir()
        self.run_command("CopyFolder", From="nothing", To="copy of nothing")
        self.assertEqual(self.tree("copy of nothing"), {})

    @LINUX_ONLY
    def test_folder_into_itself_by_another_name(self):
        self.write("from/file")
        (self.path / "link").symlink_to("from")
        for source, target in (("from", "link/new"), ("link", "from"), (self.path / "from", "from")):
            self.run_command("CopyFolder", "CopyFolder: the target is within the source",
                             From=source, To=target)
        self.run_command("CopyFolder", From="from", To="from 2")  # a longer name is another one
        self.run_command("MoveFolder", "Invalid argument Move 'from' to 'from/new'", From="from",
                         To="from/new")
        self.run_command("MoveFolder", "File exists Move 'from' to 'from 2'", From="from",
                         To="from 2")
        self.assertEqual(self.tree("from"), {"file": "text"})

    @LINUX_ONLY
    def test_files_onto_themselves_and_onto_folders(self):
        self.write("file", "kept")
        (self.path / "folder").mkdir()
        self.run_command("MoveFile", From="file", To="./file")
        self.run_command("CopyFile", "File exists Copy 'file' to './file'", From="file", To="./file")
        self.run_command("MoveFile", "Is a directory Move 'file' to 'folder'", From="file",
                         To="folder")
        self.run_command("DeleteFile", "Is a directory", File="folder")
        self.assertEqual((self.path / "file").read_text(), "kept")

    def test_copies_keep_the_time_of_writing(self):
        os.utime(self.write("file"), (1_000_000_000, 1_000_000_000))
        self.run_command("CopyFile", From="file", To="copy")
        self.assertEqual((self.path / "copy").stat().st_mtime, 1_000_000_000)

    @LINUX_ONLY
    def test_other_file_system(self):
        if not os.path.isdir("/dev/shm") or os.stat("/dev/shm").st_dev == self.path.stat().st_dev:
            self.skipTest("there is no other file system at /dev/shm")
        with tempfile.TemporaryDirectory(dir="/dev/shm") as other:
            self.write("file", "new")
            pathlib.Path(other, "file").write_text("old")
            self.run_command("MoveFile", From="file", To=f"{other}/file")
            self.assertEqual(os.listdir(other), ["file"])
            self.assertEqual(pathlib.Path(other, "file").read_text(), "new")
            self.assertFalse((self.path / "file").exists())
            self.write("folder/file")
            self.run_command("MoveFolder", "Invalid cross-device link Move 'folder' to "
                             f"'{other}/folder'", From="folder", To=f"{other}/folder")
            self.run_command("CopyFolder", From="folder", To=f"{other}/folder")
            self.assertEqual(self.tree(f"{other}/folder"), {"file": "text"})

    def test_odd_names(self):
        self.write("blanks and ü 😀.txt", "x")
        self.run_command("CopyFile", From="$A$", To="$B$", A="blanks and ü 😀.txt", B="ż;#.txt")
        self.assertEqual((self.path / "ż;#.txt").read_text(), "x")
        for length, message in ((259, ""), (260, "DeleteFolder: name is too long")):
            # Folders of 64 characters with a separator each, up to the length.
            name = ("x" * 64 + "/") * 3 + "y" * (length - 195)
            (self.path / name).mkdir(parents=True)
            if WINDOWS and not message:
                continue  # with the current folder in front it is too long for the system
            self.run_command("DeleteFolder", message, Folder=name)
            self.assertEqual((self.path / name).exists(), bool(message))

    @LINUX_ONLY
    def test_no_right_half_way(self):
        os.chmod(self.path, 0o777)
        for name in ("a", "b", "c"):
            self.write(f"from/{name}").chmod(0o644)
        self.write("locked/file")
        for name, mode in (("from/b", 0o000), ("from", 0o755), ("locked", 0o555)):
            os.chmod(self.path / name, mode)
        self.unprivileged = os.geteuid() == 0
        self.run_command("CopyFolder", "CopyFolder: Permission denied", From="from", To="to")
        self.assertLessEqual(set(os.listdir(self.path / "to")), {"a", "c"})
        self.run_command("DeleteFile", "Permission denied", File="locked/file")
        self.run_command("CopyFile", "Permission denied Copy 'from/a' to 'locked/file'",
                         From="from/a", To="locked/file")
        self.run_command("DeleteFolder", "DeleteFolder: Permission denied", Folder="locked")
        self.assertTrue((self.path / "locked/file").exists())
        os.chmod(self.path / "locked", 0o755)


if __name__ == "__main__":
    run_tests(__doc__)
