#!/usr/bin/env python3
"""File commands of System steps in hostile trees: links, depth, numbers, other file systems,
rights. Under --windows what only Linux knows is skipped."""
import os
import pathlib
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from program import COMMAND, WINDOWS, Scene, run_tests  # noqa: E402

NOBODY = 65534
LINUX_ONLY = unittest.skipIf(WINDOWS, "links and rights of Linux")


class FileCommands(Scene):
    options = {}  # of the runs, as subprocess.run takes them

    def run_command(self, command, message="", **keys):
        """Runs one command and checks what it says; names may be $A$, $B$ for odd ones."""
        arguments = [f"${name}$={value}" for name, value in keys.items() if len(name) == 1]
        lines = [f"{name}={value}" for name, value in keys.items() if len(name) > 1]
        job = "\n".join(["Step 1", "System", f"Command={command}", *lines, ""])
        user = {"user": NOBODY, "group": NOBODY} if getattr(self, "unprivileged", False) else {}
        ended = self.run_job(job, *arguments, **user, **self.options)
        self.assertEqual((ended.status, ended.output.decode().rstrip("\r\n")),
                         (2 if message else 0, message))

    def run_edition_2(self, command, message="", **keys):
        """The same in edition 2; the message is what follows the place."""
        lines = [f"{name}={value}" for name, value in keys.items()]
        job = "\n".join(["Globals", "Edition=2", "MessagesTo=Output", "Step 1", "System",
                         f"Command={command}", *lines])
        ended = self.run_job(job + "\n", **self.options)
        name = keys.get("File", keys.get("From"))
        place = f"Step 1 (job.qpr:4), system {command} '{name}': "
        said = ended.output.decode().replace("\r\n", "\n")
        self.assertEqual((ended.status, said), (2, f"{place}{message}\n") if message else (0, ""))

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

    @LINUX_ONLY
    def test_a_file_is_not_moved_onto_itself_by_another_name(self):
        self.write("tree/d/data", "kept")
        for name, path in (("latest", "d/data"), ("newer", "d/data"), ("folder", "d"),
                           ("gone", "nowhere")):
            (self.path / "tree" / name).symlink_to(path)
        os.link(self.path / "tree/d/data", self.path / "tree/second")
        before = self.tree("tree")
        for source, target in (("tree/latest", "tree/d/data"), ("tree/latest", "tree/second"),
                               ("tree/second", "tree/d/data"), ("tree/d/data", "tree/second")):
            self.run_command("MoveFile", f"File exists Move '{source}' to '{target}'",
                             From=source, To=target)
            self.assertEqual(self.tree("tree"), before)
        # One entry of a folder stays; a link gives way, as nothing is lost with it.
        self.run_command("MoveFile", From="tree/d/data", To="tree/folder/../d/./data")
        self.run_command("MoveFile", From="tree/d/data", To="tree/folder/data")
        self.assertEqual(self.tree("tree"), before)
        self.run_command("MoveFile", From="tree/newer", To="tree/latest")
        self.run_command("MoveFile", From="tree/second", To="tree/latest")
        self.assertEqual(self.tree("tree"), {"d": None, "d/data": "kept", "latest": "kept",
                                             "folder": "-> d", "gone": "-> nowhere"})

    def test_move_folder_moves_no_file(self):
        self.write("tree/file", "new")
        self.write("tree/old", "old")
        self.write("tree/from/inner")
        before = self.tree("tree")
        reason = "Directory name invalid." if WINDOWS else "Not a directory"
        for target in ("tree/old", "tree/none"):
            self.run_edition_2("MoveFolder", f"{reason} Move 'tree/file' to '{target}'",
                               From="tree/file", To=target)
        if not WINDOWS:
            (self.path / "link").symlink_to("tree/from")
            self.run_edition_2("MoveFolder", "File exists Move 'link' to 'tree/old'", From="link",
                               To="tree/old")
            self.run_edition_2("MoveFolder", From="link", To="link 2")
        self.assertEqual(self.tree("tree"), before)
        self.run_edition_2("MoveFolder", From="tree/from", To="tree/to")
        self.run_command("MoveFolder", From="tree/file", To="tree/old")
        self.assertEqual(self.tree("tree"), {"old": "new", "to": None, "to/inner": "text"})

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
            self.write("file")
            pathlib.Path(other, "sub").mkdir()
            self.run_command("MoveFile", f"Is a directory Move 'file' to '{other}/sub'",
                             From="file", To=f"{other}/sub")
            self.assertEqual((self.tree("."), self.tree(other)), (
                {"file": "text", "job.qpr": (self.path / "job.qpr").read_text()},
                {"file": "new", "sub": None}))
            self.write("folder/file").parent.chmod(0o555)
            for folder in (self.path, pathlib.Path(other)):
                folder.chmod(0o777)
            self.unprivileged = os.geteuid() == 0
            self.run_command("MoveFile", f"Permission denied Move 'folder/file' to '{other}/file'",
                             From="folder/file", To=f"{other}/file")
            self.unprivileged = False
            self.assertEqual(self.tree(other), {"file": "new", "sub": None})
            self.run_command("MoveFolder", "Invalid cross-device link Move 'folder' to "
                             f"'{other}/folder'", From="folder", To=f"{other}/folder")
            self.run_command("CopyFolder", From="folder", To=f"{other}/folder")
            self.assertEqual(self.tree(f"{other}/folder"), {"file": "text"})
            os.chmod(self.path / "folder", 0o755)

    def copy_onto(self, old, **status):
        """Copies a file of the rights 0640 onto `old` and checks what became of the old one."""
        self.write("new", "new").chmod(0o640)
        self.run_command("CopyFile", From="new", To=old)
        made = os.stat(self.path / old)
        self.assertEqual((self.path / old).read_text(), "new")
        self.assertEqual({name: getattr(made, name) for name in status}, status)

    @LINUX_ONLY
    def test_copies_onto_files_keep_what_they_are(self):
        self.write("old").chmod(0o604)
        self.write("sub/behind")
        (self.path / "link").symlink_to("sub/behind")
        (self.path / "nowhere").symlink_to("sub/made")
        os.link(self.path / "old", self.path / "second name")
        for name, linked in (("link", "sub/behind"), ("nowhere", "sub/made"),
                             ("old", "second name")):
            self.copy_onto(name)
            self.assertTrue(os.path.samefile(self.path / name, self.path / linked))
        self.copy_onto("old", st_mode=stat.S_IFREG | 0o604, st_nlink=2)
        os.unlink(self.path / "second name")
        self.copy_onto("old", st_mode=stat.S_IFREG | 0o604)
        self.copy_onto("another", st_mode=stat.S_IFREG | 0o640)
        if os.geteuid() == 0:
            os.chown(self.path / "old", NOBODY, 12345)
            self.copy_onto("old", st_mode=stat.S_IFREG | 0o604, st_uid=NOBODY, st_gid=12345)
        self.assertEqual(set(os.listdir(self.path / "sub")), {"behind", "made"})
        os.mkfifo(self.path / "pipe")
        self.run_command("CopyFile", "Operation not supported Copy 'new' to 'pipe'", From="new",
                         To="pipe")

    @LINUX_ONLY
    def test_copies_where_the_folder_takes_no_other_file(self):
        self.write("new", "new").chmod(0o644)
        for name, mode in (("open", 0o666), ("closed", 0o644)):
            self.write(f"locked/{name}", "old and longer").chmod(mode)
        os.chmod(self.path, 0o777)
        self.write("read only", "old").chmod(0o444)
        os.chmod(self.path / "locked", 0o555)
        self.unprivileged = os.geteuid() == 0
        self.run_command("CopyFile", From="new", To="locked/open")
        for old in ("locked/closed", "read only"):
            self.run_command("CopyFile", f"Permission denied Copy 'new' to '{old}'", From="new",
                             To=old)
        self.assertEqual(self.tree("locked"), {"open": "new", "closed": "old and longer"})
        self.assertEqual((self.path / "read only").read_text(), "old")
        os.chmod(self.path / "locked", 0o755)

    @LINUX_ONLY
    def test_a_copy_that_fails_leaves_the_old_file(self):
        self.write("new", "new" * 100_000)
        self.write("old", "old")
        import resource  # Linux alone has it
        limit = 100_000
        self.options = {"stdout": subprocess.PIPE, "preexec_fn": lambda: resource.setrlimit(
            resource.RLIMIT_FSIZE, (limit, limit))}
        for name in ("old", "another"):
            self.run_command("CopyFile", f"File too large Copy 'new' to '{name}'", From="new",
                             To=name)
        self.assertEqual((self.path / "old").read_text(), "old")
        self.assertEqual(set(os.listdir(self.path)), {"new", "old", "job.qpr"})

    def test_copies_at_the_same_time_do_not_mix(self):
        for name in "ab":
            self.write(name, name * 8_000_000)
            self.write(f"{name}.qpr", "".join(
                f"Step {number}\nSystem\nCommand=CopyFile\nFrom={name}\nTo={target}\n"
                for number, target in enumerate(["old", "linked"] * 4)))
        self.write("old")
        os.link(self.write("linked"), self.path / "second name")
        runs = [subprocess.Popen([*COMMAND, f"-config={name}.qpr", "-silent"], cwd=self.path,
                                 stdout=subprocess.DEVNULL) for name in "ab"]
        statuses = [run.wait(timeout=120) for run in runs]
        for name in ("old", "linked"):
            content = (self.path / name).read_text()
            self.assertEqual((len(set(content)), len(content)), (1, 8_000_000))
        if not WINDOWS:  # where a file that is being written is not open to others
            self.assertEqual(statuses, [0, 0])

    @LINUX_ONLY
    def test_names_that_lead_nowhere(self):
        (self.path / "loop").symlink_to("loop")
        self.write("closed/from/file").parent.parent.chmod(0o600)
        os.chmod(self.path, 0o777)
        self.unprivileged = os.geteuid() == 0
        for name, reason in (("loop", "Too many levels of symbolic links"),
                             ("x" * 256, "File name too long"),
                             ("closed/from", "Permission denied")):
            self.run_command("CopyFolder", f"CopyFolder: {reason}", From=name, To="to")
            self.run_command("CopyFolder", f"CopyFolder: {reason}", From="closed", To=name)
        self.assertEqual(set(os.listdir(self.path)), {"loop", "closed", "job.qpr"})

    @LINUX_ONLY
    def test_delete_folder_where_the_current_folder_is_too_deep(self):
        start = os.getcwd()
        self.addCleanup(os.chdir, start)
        os.chdir(self.path)
        for _ in range(20):
            os.mkdir("d" * 250)
            os.chdir("d" * 250)
        os.makedirs("folder/sub")
        self.path = pathlib.Path()
        self.run_command("DeleteFolder", "DeleteFolder: File name too long", Folder="folder")
        self.assertTrue(os.path.isdir("folder/sub"))

    def test_names_with_a_zero_character(self):
        self.write("tree/file", "kept")
        self.write("file", "kept")
        reason = "Invalid name." if WINDOWS else "Invalid argument"
        copy, move = (f"{reason} {verb} 'file' to 'tree/file\0.old'" for verb in ("Copy", "Move"))
        for command, message, keys in (
                ("CopyFile", copy, {"From": "file", "To": "tree/file\0.old"}),
                ("MoveFile", move, {"From": "file", "To": "tree/file\0.old"}),
                ("MoveFolder", move, {"From": "file", "To": "tree/file\0.old"}),
                ("CopyFile", f"{reason} Copy 'file\0.old' to 'x'", {"From": "file\0.old", "To": "x"}),
                ("MoveFile", f"{reason} Move 'file\0.old' to 'x'", {"From": "file\0.old", "To": "x"}),
                ("CopyFolder", f"CopyFolder: {reason}", {"From": "tree\0.old", "To": "x"}),
                ("CopyFolder", f"CopyFolder: {reason}", {"From": "tree", "To": "x\0.old"}),
                ("DeleteFile", reason, {"File": "file\0.old"}),
                ("DeleteFolder", f"DeleteFolder: {reason}", {"Folder": "tree\0.old"})):
            self.run_command(command, message, **keys)
        self.assertEqual((self.tree("tree"), (self.path / "file").read_text()),
                         ({"file": "kept"}, "kept"))
        self.assertFalse((self.path / "x").exists())

    def test_overwrite_takes_macros(self):
        for overwrite, flag, content in (("$F$", "1", "new\r\n"), ("$F$", "0", "oldnew\r\n"),
                                         ("$F$e", "tru", "new\r\n"), ("$G$", "1", "oldnew\r\n"),
                                         ('"1"', "", "oldnew\r\n")):
            self.write("file", "old")
            self.run_command("WriteFile", File="file", Text="new", Overwrite=overwrite, F=flag)
            self.assertEqual((self.path / "file").read_bytes().decode(), content)

    def test_lines_of_edition_2_are_whole_and_their_own(self):
        wide = "a\n".encode("utf-16")
        lacks = "Character U+1F600 does not exist in the encoding CP1252."
        for old, keys, message, new in (
                # A text that the encoding lacks leaves the file alone, or makes none.
                (b"old", {"Overwrite": 1, "Encoding": "CP1252", "Text": "ä😀"}, lacks, b"old"),
                (None, {"Encoding": "CP1252", "Text": "ä😀"}, lacks, None),
                (b"", {"Encoding": "CP1252", "Text": "ä😀", "Bom": 1}, lacks, b""),
                # A line end in front, where the last line lacks its own.
                (b"old", {"Text": "x"}, "", b"old\r\nx\r\n"),
                (b"old\n", {"Text": "x"}, "", b"old\nx\r\n"),
                (b"", {"Text": "x"}, "", b"x\r\n"),
                (wide, {"Text": "x"}, "", wide + "x\r\n".encode("utf-16-le")),
                (wide[:4], {"Text": "x"}, "", wide[:4] + "\r\nx\r\n".encode("utf-16-le")),
                # "\u0a00" ends with the byte of a line feed.
                ("\ufeff\u0a00".encode("utf-16-le"), {"Text": "x"}, "",
                 "\ufeff\u0a00\r\nx\r\n".encode("utf-16-le")),
                (b"old", {"Overwrite": 1, "Text": "x", "Bom": 1}, "", b"\xef\xbb\xbfx\r\n"),
                (None, {"Text": "x", "Encoding": "UTF16"}, "",
                 "\ufeffx\r\n".encode("utf-16-le"))):
            with self.subTest(old=old, keys=keys):
                name = self.path / "file"
                name.unlink(missing_ok=True)
                if old is not None:
                    name.write_bytes(old)
                self.run_edition_2("WriteFile", message, File="file", **keys)
                self.assertEqual(name.read_bytes() if name.exists() else None, new)
        if os.path.exists("/dev/full") and not WINDOWS:
            self.run_edition_2("WriteFile", "Could not write to file '/dev/full': No space left on "
                               "device", File="/dev/full", Text="x")

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
