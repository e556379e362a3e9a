"""The bill of materials of packages that have programs of a build in them."""
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess

import pytest

_SBOM = pathlib.Path(__file__).parents[2] / "packaging/sbom"
_BUILD = pathlib.Path(os.environ["BUILD"])
_LICENCES = "/usr/share/nodejs/spdx-license-ids/index.json"
_EXCEPTIONS = "/usr/share/nodejs/spdx-exceptions/index.json"
_EMBEDDED = {"nlohmann-json3-dev", "libcli11-dev"}


def installed_version(package):
    return subprocess.run(
        ["dpkg-query", "-W", "-f", "${Version}\n", package], check=True, stdout=subprocess.PIPE, text=True
    ).stdout.split()[0]


class Packages:
    def __init__(self, directory):
        self.directory = directory
        self.files = []

    def add(self, name, program, depends=""):
        root = self.directory / name
        (root / "DEBIAN").mkdir(parents=True)
        (root / "usr").mkdir()
        shutil.copy(program, root / "usr")
        (root / "usr/link").symlink_to("in-another-package.so")
        fields = {"Package": name, "Version": "1.2.3+a", "Architecture": "amd64", "Maintainer": "M", "Description": "D"}
        fields |= {"Depends": depends} if depends else {}
        (root / "DEBIAN/control").write_text("".join(f"{key}: {value}\n" for key, value in fields.items()))
        file = self.directory / f"{name}.deb"
        subprocess.run(["dpkg-deb", "-Znone", "--build", root, file], check=True, stdout=subprocess.DEVNULL)
        self.files.append(file)

    def described(self):
        return subprocess.run(
            [_SBOM, *self.files],
            env=os.environ | {"SOURCE_DATE_EPOCH": "1700000000"},
            capture_output=True,
            text=True,
            check=False,
        )

    def bill(self):
        done = self.described()
        assert done.returncode == 0, done.stderr
        return json.loads(done.stdout)


@pytest.fixture(name="packages")
def packages_of_the_build(tmp_path):
    packages = Packages(tmp_path)
    packages.add("libtarn1", _BUILD / "src/libtarn.so.1", "libc6 (>= 2.14)")
    packages.add("libkoriil1", _BUILD / "kit/host/libkoriil.so.1", "libc6")
    packages.add("tarn-tools", _BUILD / "kit/tarnctl/tarnctl", "libc6, libtarn1 (= 1.2.3+a)")
    packages.add("tarn-bridge", _BUILD / "kit/fleet/tarn-bridge", "libc6, libmosquitto1, libkoriil1 (= 1.2.3+a)")
    return packages


def components(bill):
    return {part["name"]: part for part in bill["components"]}


def needed_by(bill, name):
    names = {part["bom-ref"]: part["name"] for part in bill["components"]}
    ref = components(bill)[name]["bom-ref"]
    return {names[needed] for entry in bill["dependencies"] if entry["ref"] == ref for needed in entry["dependsOn"]}


def test_the_library_is_linked_with_the_c_library_and_has_nothing_of_others_inside(packages):
    assert needed_by(packages.bill(), "libtarn1") == {"libc6"}


def test_what_is_compiled_into_a_program_is_named_with_the_version_that_is_installed(packages):
    bill = packages.bill()
    assert needed_by(bill, "tarn-tools") == _EMBEDDED | {"libtarn1", "libc6", "libstdc++6", "libgcc-s1"}
    for name, part in components(bill).items():
        if name not in ("libtarn1", "libkoriil1", "tarn-tools", "tarn-bridge"):
            assert part["version"] == installed_version(name)
            relation = "embedded" if name in _EMBEDDED else "linked"
            assert part["properties"] == [{"name": "tarn:relation", "value": relation}]


def test_a_library_of_a_package_that_is_shipped_is_not_of_others(packages):
    assert needed_by(packages.bill(), "tarn-bridge") == {"libkoriil1", "libmosquitto1", "libc6"}


def test_a_package_has_the_checksum_of_its_file(packages):
    parts = components(packages.bill())
    for file in packages.files:
        content = hashlib.sha256(file.read_bytes()).hexdigest()
        assert parts[file.stem]["hashes"] == [{"alg": "SHA-256", "content": content}]


def test_a_library_that_nobody_has_a_licence_for_is_refused(packages):
    packages.add("other", "/bin/ls")
    done = packages.described()
    assert done.returncode == 1
    assert re.fullmatch(r".*/other\.deb needs \S+: packaging/sbom has to name its package and its licence\n", done.stderr)


def test_the_same_packages_have_the_same_bill(packages):
    assert packages.bill() == packages.bill()


@pytest.mark.parametrize("words", [[], ["missing.deb", "file.tar"]])
def test_what_is_no_package_is_refused(words):
    done = subprocess.run([_SBOM, *words], capture_output=True, text=True, check=False)
    assert (done.returncode, done.stderr) == (1, "usage: packaging/sbom PACKAGE.deb...\n")


# What CycloneDX 1.5 demands of the parts that are used here.


def known(path):
    with open(path, encoding="utf-8") as file:
        return set(json.load(file))


def check_licences(licences):
    """One SPDX expression, of licences that SPDX lists, each with an exception that it lists or none."""
    assert len(licences) == 1 and set(licences[0]) == {"expression"}
    for choice in licences[0]["expression"].split(" OR "):
        licence, _, exception = choice.partition(" WITH ")
        assert licence in known(_LICENCES)
        assert not exception or exception in known(_EXCEPTIONS)


def test_the_bill_begins_as_the_standard_demands(packages):
    bill = packages.bill()
    assert set(bill) == {"bomFormat", "specVersion", "serialNumber", "version", "metadata", "components", "dependencies"}
    assert (bill["bomFormat"], bill["specVersion"], bill["version"]) == ("CycloneDX", "1.5", 1)
    assert re.fullmatch(r"urn:uuid:[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}", bill["serialNumber"])
    assert bill["metadata"]["timestamp"] == "2023-11-14T22:13:20Z"
    product = bill["metadata"]["component"]
    assert (product["type"], product["name"], product["version"]) == ("application", "tarn", "1.2.3+a")
    check_licences(product["licenses"])


def test_every_component_is_as_the_standard_demands(packages):
    for part in packages.bill()["components"]:
        assert set(part) - {"hashes", "properties"} == {"type", "bom-ref", "name", "version", "purl", "licenses"}
        assert part["type"] in ("application", "library")
        assert re.fullmatch(r"pkg:deb/(debian|tarn)/[\w%.-]+@[\w%.~-]+\?arch=\w+", part["purl"], re.ASCII)
        assert all(re.fullmatch(r"[0-9a-f]{64}", entry["content"]) for entry in part.get("hashes", []))
        check_licences(part["licenses"])


def test_every_reference_leads_to_one_component(packages):
    bill = packages.bill()
    refs = [bill["metadata"]["component"]["bom-ref"]] + [part["bom-ref"] for part in bill["components"]]
    assert len(set(refs)) == len(refs)
    used = [entry["ref"] for entry in bill["dependencies"]]
    assert len(set(used)) == len(used)
    for entry in bill["dependencies"]:
        assert {entry["ref"], *entry["dependsOn"]} <= set(refs)
