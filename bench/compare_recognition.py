#!/usr/bin/env python3
"""Recognition beside its peers, in one run: bench/compare_recognition.py CORPUS_DIR [RUNS]

The picture is a typical capture of 960x560 pixels with ten lines, put together from two pictures of the corpus. Peers are
the RapidOCR Python package with its defaults (networks of the same family), installed into build/peers, and the tesseract
command with chi_sim+eng. Warm times are those of a loaded engine, cold times those of whole processes; both are medians.
All pictures of the corpus are read in one process too. Needs tesseract with chi_sim, ImageMagick and a release build
(./run --version).
"""
import json
import pathlib
import re
import statistics
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
PEERS = ROOT / "build/peers"

PEER_SCRIPT = """
import sys, time
from rapidocr import RapidOCR
engine, runs, pictures = RapidOCR(), int(sys.argv[1]), sys.argv[2:]
for run in range(runs + 1):
    start = time.monotonic()
    for picture in pictures:
        engine(picture)
    print("time", (time.monotonic() - start) * 1000)
"""


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode()


def install_peers():
    if not (PEERS / "bin/rapidocr").exists():
        PEERS.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run([sys.executable, "-m", "venv", PEERS], check=True)
        subprocess.run([PEERS / "bin/pip", "install", "--quiet", "rapidocr==3.10.0", "onnxruntime==1.32.0"], check=True)
    (PEERS / "warm.py").write_text(PEER_SCRIPT)


def typical_capture(corpus):
    picture = ROOT / "build/typical-capture.png"
    output_of("convert", corpus / "zh-article.png", corpus / "mixed-docs.png", "-background", "white", "-append",
              "-extent", "960x560", picture)
    return picture


def warm_ovrin(pictures, runs):
    """Each run reads all pictures in one process that has read one before."""
    folder = ROOT / "build/compare-recognition"
    folder.mkdir(parents=True, exist_ok=True)
    truth = [{"image": str(picture), "lang": "any", "lines": []} for picture in pictures]
    (folder / "truth.json").write_text(json.dumps(truth))
    subprocess.run([ROOT / "tools/build", "release", "ovrin_score"], check=True)
    return [float(output_of(BUILD / "ovrin_score", folder, folder / "out").split()[-1]) for _ in range(runs)]


def warm_peer(pictures, runs):
    text = output_of(PEERS / "bin/python", PEERS / "warm.py", str(runs), *pictures)
    return [float(ms) for ms in re.findall(r"time ([0-9.]+)", text)][1:]


def cold(command, runs):
    times = []
    for _ in range(runs + 1):
        start = time.monotonic()
        output_of(*command)
        times.append((time.monotonic() - start) * 1000)
    return times[1:]


def peak_memory_mib(command):
    """The largest child so far is this one only if it is the largest: run it in a process of its own."""
    program = "import resource,subprocess,sys;subprocess.run(sys.argv[1:],stdout=subprocess.DEVNULL);" \
              "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)"
    return int(output_of(sys.executable, "-c", program, *command)) / 1024


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    corpus, runs = pathlib.Path(sys.argv[1]).resolve(), int(sys.argv[2]) if len(sys.argv) > 2 else 9
    install_peers()
    picture = typical_capture(corpus)
    large = ROOT / "build/capture-4k.png"
    output_of("convert", picture, "-resize", "3840x2160!", large)
    ovrin = [BUILD / "ovrin", "recognize", picture]
    tesseract = ["tesseract", picture, "-", "-l", "chi_sim+eng"]

    rows = [("ovrin, warm", warm_ovrin([picture], runs), None),
            ("RapidOCR, warm", warm_peer([picture], runs), None),
            ("ovrin recognize, cold", cold(ovrin, runs), None),
            ("tesseract chi_sim+eng, cold", cold(tesseract, runs), None)]
    warm = statistics.median(rows[0][1])
    print(f"{'typical capture 960x560':32} {'median':>9} {'minimum':>9} {'maximum':>9}   ovrin warm / this")
    for name, times, _ in rows:
        median = statistics.median(times)
        print(f"{name:32} {median:6.0f} ms {min(times):6.0f} ms {max(times):6.0f} ms   {warm / median:.2f}")
    pictures = [corpus / item["image"] for item in json.loads((corpus / "truth.json").read_text())]
    ours, theirs = warm_ovrin(pictures, 3), warm_peer(pictures, 1)
    print(f"all {len(pictures)} pictures in one process: {statistics.median(ours):.0f} ms, RapidOCR "
          f"{statistics.median(theirs):.0f} ms, {statistics.median(ours) / statistics.median(theirs):.2f} of it")
    tiled = ROOT / "build/text-4k.png"
    output_of("montage", *[picture] * 12, "-tile", "3x4", "-geometry", "1280x540+0+0", tiled)
    for name, path in (("4K, few large lines", large), ("4K full of text", tiled)):
        print(f"{'peak memory, ' + name:32} {peak_memory_mib([BUILD / 'ovrin', 'recognize', path]):6.0f} MiB   (limit 700 MB)")


if __name__ == "__main__":
    main()
