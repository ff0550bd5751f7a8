"""What an installed tree holds, after it was moved: installed_test.py CMAKE BUILD_DIRECTORY"""

import gzip
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

cmake, build = sys.argv[1:]


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True)
    assert done.returncode == 0, f"{command}: {done.stdout}{done.stderr}"
    return done.stdout + done.stderr


with tempfile.TemporaryDirectory() as folder:
    folder = pathlib.Path(folder)
    run(cmake, "--install", build, "--prefix", folder / "first")
    home = folder / "moved here"
    shutil.move(folder / "first", home)
    share = home / "share"
    render = home / "bin/brisklet-render"

    for program in home.glob("bin/*"):
        assert str(build) not in run("readelf", "-d", program), f"{program.name} looks for libraries in the build"
    scene = share / "brisklet/examples/launch-day.json"
    picture = folder / "still.png"
    run(render, scene, "--still", picture)
    assert picture.read_bytes().startswith(b"\x89PNG")

    # The manual page and each shell's completion name exactly the options that there are.
    options = set(re.findall(r"(?<![\w-])--[a-z]+", run(render, "--help")))
    manual = gzip.decompress((share / "man/man1/brisklet-render.1.gz").read_bytes()).decode().replace("\\-", "-")
    assert set(re.findall(r"(?<![\w-])--[a-z]+", manual)) == options
    for file in [*share.rglob("completions/brisklet-render"), *share.rglob("_brisklet-render")]:
        assert set(re.findall(r"(?<![\w-])--[a-z]+", file.read_text())) == options, file
    fish = (share / "fish/vendor_completions.d/brisklet-render.fish").read_text()
    assert {f"--{name}" for name in re.findall(r"^complete.* -l ([a-z]+)", fish, re.M)} >= options - {"--into"}

    icons = {icon.parent.parent.name for icon in (share / "icons/hicolor").rglob("apps/brisklet.*")}
    assert icons == {"scalable"} | {f"{size}x{size}" for size in (16, 24, 32, 48, 64, 128, 256, 512)}
    entry, metadata = share / "applications/brisklet.desktop", share / "metainfo/org.brisklet.studio.metainfo.xml"
    assert re.findall(r"^Exec=(.*)$", entry.read_text(), re.M) == ["brisklet"]
    assert f"<launchable type=\"desktop-id\">{entry.name}</launchable>" in metadata.read_text()
    version = run(render, "--version").split()[-1]
    assert f"<release version=\"{version}\"" in metadata.read_text(), "the release notes do not name this version"
    if shutil.which("desktop-file-validate"):
        run("desktop-file-validate", entry)
    if shutil.which("appstreamcli"):
        # As it is published, with an address.
        template = pathlib.Path(__file__).parents[2] / "resources/desktop" / f"{metadata.name}.in"
        metadata.write_text(template.read_text().replace("@BRISKLET_HOMEPAGE@", "https://example.org"))
        run("appstreamcli", "validate", "--no-net", metadata)
