#!/usr/bin/env python3
"""Recognition beside its peers, in one run: bench/compare_recognition.py CORPUS_DIR [RUNS]

The picture is a typical capture of 960x560 pixels with ten lines, put together from two pictures of the corpus. Peers are
@gutenye/ocr-node (the same networks under Node), installed into build/peers, and the tesseract command with
chi_sim+eng. Warm times are those of a loaded engine, cold times those of whole processes; both are medians.
Needs node, npm, tesseract and ImageMagick, and a release build (./run --version).
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

NODE_SCRIPT = """
import Ocr from '@gutenye/ocr-node';
const [picture, runs] = [process.argv[2], Number(process.argv[3])];
const ocr = await Ocr.create();
for (let run = 0; run <= runs; run++) {
  const start = performance.now();
  await ocr.detect(picture);
  console.log(performance.now() - start);
}
"""


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode()


def install_peers():
    if not (PEERS / "node_modules/@gutenye/ocr-node").exists():
        PEERS.mkdir(parents=True, exist_ok=True)
        (PEERS / "package.json").write_text(json.dumps({"private": True, "type": "module"}))
        subprocess.run(["npm", "install", "--ignore-scripts", "--no-audit", "--no-fund", "@gutenye/ocr-node@1.4.8"],
                       cwd=PEERS, check=True, stdout=subprocess.DEVNULL)
    (PEERS / "warm.mjs").write_text(NODE_SCRIPT)


def typical_capture(corpus):
    picture = ROOT / "build/typical-capture.png"
    output_of("convert", corpus / "zh-article.png", corpus / "mixed-docs.png", "-background", "white", "-append",
              "-extent", "960x560", picture)
    return picture


def warm_ovrin(picture, runs):
    subprocess.run([ROOT / "tools/build", "release", "recognize_lines"], check=True)
    text = output_of(BUILD / "recognize_lines", "--times", str(runs + 1), picture)
    return [float(ms) for ms in re.findall(r": ([0-9.]+) ms", text)][1:]


def warm_node(picture, runs):
    return [float(line) for line in output_of("node", PEERS / "warm.mjs", picture, str(runs)).split()][1:]


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
    corpus, runs = pathlib.Path(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 9
    install_peers()
    picture = typical_capture(corpus)
    large = ROOT / "build/capture-4k.png"
    output_of("convert", picture, "-resize", "3840x2160!", large)
    ovrin = [BUILD / "ovrin", "recognize", picture]
    tesseract = ["tesseract", picture, "-", "-l", "chi_sim+eng"]

    rows = [("ovrin, warm", warm_ovrin(picture, runs), None),
            ("@gutenye/ocr-node, warm", warm_node(picture, runs), 0.5),
            ("ovrin recognize, cold", cold(ovrin, runs), None),
            ("tesseract chi_sim+eng, cold", cold(tesseract, runs), None)]
    warm = statistics.median(rows[0][1])
    print(f"{'typical capture 960x560':32} {'median':>9} {'minimum':>9} {'maximum':>9}   ovrin warm / this")
    for name, times, _ in rows:
        median = statistics.median(times)
        print(f"{name:32} {median:6.0f} ms {min(times):6.0f} ms {max(times):6.0f} ms   {warm / median:.2f}")
    tiled = ROOT / "build/text-4k.png"
    output_of("montage", *[picture] * 12, "-tile", "3x4", "-geometry", "1280x540+0+0", tiled)
    for name, path in (("4K, few large lines", large), ("4K full of text", tiled)):
        print(f"{'peak memory, ' + name:32} {peak_memory_mib([BUILD / 'ovrin', 'recognize', path]):6.0f} MiB   (limit 700 MB)")


if __name__ == "__main__":
    main()
