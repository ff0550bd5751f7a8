"""The batch example as a reader runs it: batch_example_test.py SOURCES BRISKLET_RENDER"""

import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

sources, render = pathlib.Path(sys.argv[1]), sys.argv[2]
batch = sources / "examples/batch"
schema = json.loads((sources / "docs/scene.schema.json").read_text())

with tempfile.TemporaryDirectory() as folder:
    folder = pathlib.Path(folder)
    scenes = folder / "scenes"
    subprocess.run([sys.executable, batch / "make_scenes.py", batch / "twenty.csv", scenes], check=True)

    files = sorted(scenes.iterdir())
    assert len(files) == 20, files
    for file in files:
        scene = json.loads(file.read_text())
        jsonschema.validate(scene, schema)
        latest = max(ping["delayMs"] for ping in scene["notifications"])
        assert latest + 1800 >= 3000, f"{file.name}: most platforms refuse movies under 3 s"

    movies = folder / "movies"
    shortest = min(files, key=lambda file: file.stat().st_size)
    subprocess.run([render, "--into", movies, shortest], check=True)
    movie = movies / f"{shortest.stem}.mp4"
    assert movie.read_bytes()[4:8] == b"ftyp", movie
