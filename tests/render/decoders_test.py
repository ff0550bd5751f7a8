#!/usr/bin/env python3
"""Decodes movies of the examples by GStreamer, which has nothing in common with libavcodec, and compares every
frame, and one after a seek to the middle, with what ffmpeg decodes.

decoders_test.py BRISKLET_RENDER EXAMPLES
"""

import hashlib
import subprocess
import sys
import tempfile
from pathlib import Path

try:
    import gi
    gi.require_version("Gst", "1.0")
    gi.require_version("GstVideo", "1.0")
    from gi.repository import Gst, GstVideo
except (ImportError, ValueError) as failure:
    print("missing:", failure)
    sys.exit(77)


def picture_hash(sample):
    """The MD5 of a frame's planes without the padding of their rows."""
    buffer, info = sample.get_buffer(), GstVideo.VideoInfo.new_from_caps(sample.get_caps())
    meta = GstVideo.buffer_get_video_meta(buffer)
    with_buffer, memory = buffer.map(Gst.MapFlags.READ)
    assert with_buffer
    data, digest = memory.data, hashlib.md5()
    for plane in range(3):
        offset, stride = (meta or info).offset[plane], (meta or info).stride[plane]
        width, height = (info.width, info.height) if plane == 0 else (info.width // 2, info.height // 2)
        for row in range(height):
            digest.update(data[offset + row * stride:offset + row * stride + width])
    buffer.unmap(memory)
    return digest.hexdigest()


def gstreamer_hashes(movie):
    """Of every frame, and of the one in the middle after a seek there."""
    pipeline = Gst.parse_launch(f"filesrc location={movie} ! qtdemux ! h264parse ! openh264dec ! "
                                "video/x-raw,format=I420 ! appsink name=out sync=false max-buffers=2")
    out = pipeline.get_by_name("out")

    def pulled():
        return out.emit("try-pull-sample", 20 * Gst.SECOND)

    pipeline.set_state(Gst.State.PLAYING)
    hashes = []
    while sample := pulled():
        hashes.append(picture_hash(sample))
    assert out.get_property("eos"), "the decoder stopped before the end"
    middle = len(hashes) // 2
    pipeline.set_state(Gst.State.PAUSED)
    assert pipeline.seek_simple(Gst.Format.TIME, Gst.SeekFlags.FLUSH | Gst.SeekFlags.ACCURATE,
                                middle * Gst.SECOND // 30 + Gst.MSECOND)
    pipeline.set_state(Gst.State.PLAYING)
    sought = picture_hash(pulled())
    pipeline.set_state(Gst.State.NULL)
    return hashes, sought == hashes[middle]


def ffmpeg_hashes(movie):
    listing = subprocess.run(["ffmpeg", "-v", "error", "-i", movie, "-map", "0:v", "-f", "framemd5", "-"],
                             check=True, capture_output=True, text=True).stdout
    return [line.split(",")[-1].strip() for line in listing.splitlines() if not line.startswith("#")]


def main():
    render, examples = sys.argv[1:]
    Gst.init(None)
    if not Gst.ElementFactory.find("openh264dec"):
        print("missing: openh264dec")
        return 77
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        for scene, options in [("launch-day", []), ("launch-day", ["--motion"]), ("photo", []),
                               ("payday", ["--motion", "--page", "1080x1920"])]:
            movie = f"{folder}/movie.mp4"
            subprocess.run([render, Path(examples) / f"{scene}.json", movie, *options], check=True)
            hashes, finds_the_middle = gstreamer_hashes(movie)
            same = hashes == ffmpeg_hashes(movie)
            print(scene, *options, f"{len(hashes)} frames", "same" if same else "OTHER",
                  "seeks" if finds_the_middle else "SEEKS WRONG")
            failures += not (same and finds_the_middle)
    return min(failures, 1)


if __name__ == "__main__":
    sys.exit(main())
