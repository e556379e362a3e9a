"""How a release is made: in a copy of the tree, whose packages are made in a moment."""
import os
import pathlib
import re
import shutil
import subprocess
import tarfile

import pytest

_TREE = pathlib.Path(__file__).parents[2]
_MOMENT = "1700000000"  # 22:13:20 on the 14th of November 2023
# What of the tree a release looks at; its archive has the rest as well.
_FILES = (".gitignore", "CHANGELOG.md", "CMakeLists.txt", "README.md", "debian", "packaging")
_ADDRESSES = ("debian/control", "debian/changelog", "packaging/openwrt/libtarn/Makefile")
_RECIPE = "packaging/yocto/recipes-connectivity/tarn/tarn_{}.bb"

# Stands in for packaging/build-packages: a package for each architecture, with one file in it.
_BUILD_PACKAGES = """#!/bin/sh
set -eu
cd "$(dirname "$0")/.."
mkdir -p "build/packages/$1" build/one/DEBIAN
cp README.md build/one
{
    echo "Package: one"
    echo "Version: $(packaging/version)"
    echo "Architecture: $1"
    echo "Maintainer: Somebody <somebody@tarn.example>"
    echo "Description: a package"
} > build/one/DEBIAN/control
dpkg-deb --root-owner-group --build build/one "build/packages/$1/one_$1.deb" > /dev/null
"""


class Tree:
    def __init__(self, directory):
        self.directory = directory

    def run(self, *command, **variables):
        environment = os.environ | {"SOURCE_DATE_EPOCH": _MOMENT} | variables
        return subprocess.run(command, cwd=self.directory, env=environment, capture_output=True, text=True, check=False)

    def told(self, *command):
        done = self.run(*command)
        assert done.returncode == 0, done.stdout + done.stderr
        return done.stdout.strip()

    def refused(self, *command):
        before = self.state()
        done = self.run(*command)
        assert done.returncode == 1
        assert self.state() == before
        return done.stderr

    def read(self, path):
        return (self.directory / path).read_text(encoding="utf-8")

    def write(self, path, text):
        (self.directory / path).write_text(text, encoding="utf-8")

    def replace(self, path, old, new):
        text = self.read(path)
        assert old in text
        self.write(path, text.replace(old, new))

    def commit(self):
        self.told("git", "add", "--all")
        self.told("git", "commit", "--quiet", "-m", "A change")

    def state(self):
        """The branch, the tags, and what is not committed."""
        return [self.told("git", *command) for command in (("rev-parse", "HEAD"), ("tag",), ("status", "--porcelain"))]

    def made(self, name):
        return self.directory / "build/release/3.0.0" / name


@pytest.fixture(name="ready", scope="module")
def tree_of_version_3(tmp_path_factory):
    """A tree that can be released as version 3.0.0."""
    tree = Tree(tmp_path_factory.mktemp("tree"))
    files = subprocess.run(["git", "ls-files", "-z", *_FILES], cwd=_TREE, capture_output=True, check=True).stdout
    packed = subprocess.run(["tar", "--null", "-T-", "-c"], cwd=_TREE, input=files, capture_output=True, check=True).stdout
    subprocess.run(["tar", "-x"], cwd=tree.directory, input=packed, check=True)
    tree.told("git", "init", "--quiet")
    tree.told("git", "config", "user.name", "Somebody")
    tree.told("git", "config", "user.email", "somebody@tarn.example")
    tree.write("packaging/build-packages", _BUILD_PACKAGES)
    tree.write("CHANGELOG.md", "# Changelog\n\n## 2.9.0 (2023-01-01)\n\n- All before.\n")
    tree.told("packaging/version", "3.0.0")
    tree.replace("CHANGELOG.md", "(unreleased)\n", "(unreleased)\n\n- Something new.\n")
    for path in (*_ADDRESSES, _RECIPE.format("3.0.0")):
        tree.replace(path, "tarn.invalid", "tarn.example")
    tree.commit()
    return tree


@pytest.fixture(name="tree")
def copy_of_tree(tmp_path, ready):
    return Tree(shutil.copytree(ready.directory, tmp_path / "tree"))


@pytest.fixture(name="released", scope="module")
def tree_that_is_released(tmp_path_factory, ready):
    tree = Tree(shutil.copytree(ready.directory, tmp_path_factory.mktemp("released") / "tree"))
    tree.told("packaging/release", "3.0.0")
    return tree


def test_every_file_has_the_version_of_the_project():
    subprocess.run([_TREE / "packaging/version"], check=True)


@pytest.mark.parametrize("path", ["CHANGELOG.md", "debian/changelog", "packaging/openwrt/libtarn/Makefile"])
def test_a_file_with_another_version_is_named(tree, path):
    tree.replace(path, "3.0.0", "3.0.1")
    assert tree.refused("packaging/version") == f"{path}: version 3.0.1; CMakeLists.txt has 3.0.0\n"


def test_a_recipe_with_another_version_is_named(tree):
    (tree.directory / _RECIPE.format("3.0.0")).rename(tree.directory / _RECIPE.format("2.9.0"))
    assert tree.refused("packaging/version") == f"{_RECIPE.format('2.9.0')}: version 2.9.0; CMakeLists.txt has 3.0.0\n"


def test_a_file_without_a_version_is_named(tree):
    tree.replace("debian/changelog", "tarn (3.0.0)", "tarn (next)")
    assert tree.refused("packaging/version") == "debian/changelog: version missing; CMakeLists.txt has 3.0.0\n"


def test_a_version_that_is_not_released_is_renamed_everywhere(tree):
    tree.told("packaging/version", "3.1.0")
    assert tree.told("packaging/version") == "3.1.0"
    assert tree.read("CHANGELOG.md").startswith("# Changelog\n\n## 3.1.0 (unreleased)\n\n- Something new.\n\n## 2.9.0 (")


def test_after_a_release_the_entries_of_the_next_version_begin(tmp_path, released):
    tree = Tree(shutil.copytree(released.directory, tmp_path / "tree"))
    tree.told("packaging/version", "3.0.1")
    assert tree.told("packaging/version") == "3.0.1"
    assert tree.read("CHANGELOG.md").startswith("# Changelog\n\n## 3.0.1 (unreleased)\n\n## 3.0.0 (2023-11-14)\n\n- Some")
    assert re.findall(r"^tarn \((.*)\)", tree.read("debian/changelog"), re.MULTILINE)[:2] == ["3.0.1", "3.0.0"]


def test_a_version_that_is_not_later_than_the_released_one_is_refused(released):
    assert released.refused("packaging/version", "3.0.0") == "3.0.0 is released; expected a later version than that\n"
    assert released.refused("packaging/release", "3.0.0") == "3.0.0 is not later than v3.0.0, the last release\n"


@pytest.mark.parametrize("text", ["3", "3.0", "v3.0.0", "3.0.0-rc1", "03.0.0", "3.0.0.0", "-h"])
def test_what_is_no_version_is_refused(tree, text):
    assert "as in 1.2.3" in tree.refused("packaging/version", text)
    assert tree.refused("packaging/release", text) == f"{text} is no version; expected three numbers, as in 1.2.3\n"


@pytest.mark.parametrize("words", [[], ["3.0.0", "--notag"], ["3.0.0", "--no-tag", "now"]])
def test_a_release_with_other_words_is_refused(tree, words):
    assert tree.refused("packaging/release", *words) == "usage: packaging/release VERSION [--no-tag]\n"


def test_a_release_of_a_changed_tree_is_refused(tree):
    tree.write("README.md", "Changed.")
    tree.write("left", "New.")
    told = tree.refused("packaging/release", "3.0.0")
    assert told == "the tree has changes that are not committed:\n M README.md\n?? left\n"


@pytest.mark.parametrize("last", ["v3.0.0", "v3.0.1", "v10.0.0"])
def test_a_release_that_is_not_later_than_the_last_is_refused(tree, last):
    for tag in ("v2.9.0", last):
        tree.told("git", "tag", tag)
    assert tree.refused("packaging/release", "3.0.0") == f"3.0.0 is not later than {last}, the last release\n"


@pytest.mark.parametrize(
    "entry", ["## 3.0.1 (unreleased)\n\n- New.\n", "## 3.0.0 (unreleased)\n", "## 3.0.0 (2023-01-01)\n\n- New.\n"]
)
def test_a_release_without_an_entry_in_the_changelog_is_refused(tree, entry):
    tree.write("CHANGELOG.md", f"# Changelog\n\n{entry}\n## 2.9.0 (2023-01-01)\n\n- Old.\n")
    tree.commit()
    told = tree.refused("packaging/release", "3.0.0")
    assert told == "CHANGELOG.md has to begin with\n## 3.0.0 (unreleased)\n\n- What is new.\n"


def test_a_release_needs_the_addresses_of_whoever_makes_it(tree):
    tree.replace("debian/control", "tarn.example", "tarn.invalid")
    tree.commit()
    told = tree.refused("packaging/release", "3.0.0")
    assert re.match(r"expected your own addresses in place of these:\ndebian/control:\d+:Maintainer: ", told)
    assert "A release needs your own addresses" in tree.told("packaging/release", "3.0.0", "--no-tag")


def test_a_release_dates_the_version_and_tags_it(ready, released):
    assert released.state()[1:] == ["v3.0.0", ""]
    assert released.told("git", "cat-file", "-t", "v3.0.0") == "tag"
    assert released.told("git", "rev-parse", "v3.0.0^{commit}") == released.state()[0]
    assert released.told("git", "rev-parse", "HEAD^") == ready.state()[0]
    assert released.read("CHANGELOG.md").startswith("# Changelog\n\n## 3.0.0 (2023-11-14)\n\n- Something new.\n")
    assert released.told("dpkg-parsechangelog", "-S", "Date") == "Tue, 14 Nov 2023 22:13:20 +0000"


def test_the_archive_is_that_of_the_tag(released):
    released.told("git", "archive", "--prefix", "tarn-3.0.0/", "--output", "build/tagged.tar.gz", "v3.0.0")
    archive = released.made("tarn-3.0.0.tar.gz")
    assert archive.read_bytes() == (released.directory / "build/tagged.tar.gz").read_bytes()
    with tarfile.open(archive) as files:
        assert {(member.mtime, member.name.split("/")[0]) for member in files} == {(int(_MOMENT), "tarn-3.0.0")}


def test_a_rehearsal_leaves_all_as_it_was_and_makes_the_same(tree, released):
    before = tree.state()
    tree.told("packaging/release", "3.0.0", "--no-tag")
    assert tree.state() == before
    assert tree.made("SHA256SUMS").read_text() == released.made("SHA256SUMS").read_text()


def test_everything_that_is_made_has_its_checksum(released):
    names = {path.name for path in released.made(".").iterdir()} - {"SHA256SUMS"}
    assert {"tarn-3.0.0.tar.gz", "tarn-3.0.0.cdx.json", "one_mips.deb", "one_powerpc.deb"} < names
    checked = released.told("sh", "-c", "cd build/release/3.0.0 && sha256sum --check --strict SHA256SUMS")
    assert set(checked.splitlines()) == {f"{name}: OK" for name in names}


def test_a_release_whose_packages_fail_is_none(tree):
    tree.write("packaging/build-packages", "#!/bin/sh\nexit 1\n")
    tree.commit()
    tree.refused("packaging/release", "3.0.0")
    assert tree.told("git", "worktree", "list").count("\n") == 0
