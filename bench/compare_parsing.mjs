// How fast streamed answers are parsed, beside the official Node SDK of each protocol, on the same bytes in one run.
//
//   node bench/compare_parsing.mjs
//
// Builds the bench preset's parsing benchmark; installs the SDKs into build/bench_sdk. The rounds of all programs
// alternate and the best of each counts, so that a busy machine slows none of them more than the others.
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const rounds = 7;
const chunkSize = 16384;
const root = path.dirname(path.dirname(fileURLToPath(import.meta.url)));
const sdkFolder = path.join(root, "build", "bench_sdk");
const packages = ["openai@6.49.0", "@anthropic-ai/sdk@1.13.0"];

function run(command, args, options = {}) {
  return execFileSync(command, args, { cwd: root, encoding: "utf8", stdio: ["ignore", "pipe", "inherit"], ...options });
}

async function installedSDK(name) {
  const require = createRequire(path.join(sdkFolder, "package.json"));
  return (await import(pathToFileURL(require.resolve(name)))).default;
}

// A fetch that answers every request with the recording.
function fetchOf(file) {
  const bytes = fs.readFileSync(file);
  return async () => {
    const body = new ReadableStream({
      start(controller) {
        for (let at = 0; at < bytes.length; at += chunkSize) {
          controller.enqueue(new Uint8Array(bytes.subarray(at, at + chunkSize)));
        }
        controller.close();
      },
    });
    return new Response(body, { status: 200, headers: { "content-type": "text/event-stream" } });
  };
}

// Milliseconds from the call to the last piece.
async function time(makeStream, pieceOf) {
  const start = performance.now();
  let pieces = 0;
  for await (const event of await makeStream()) if (pieceOf(event)) ++pieces;
  const elapsed = performance.now() - start;
  if (pieces !== 10000) throw new Error(`the SDK gave ${pieces} pieces`);
  return elapsed;
}

function ownTimes(recordings) {
  const output = run(path.join(root, "build/bench/bench/bench_parsing"), ["--benchmark_format=json", "--benchmark_min_time=0.1"], {
    env: { ...process.env, OVRIN_RECORDINGS: recordings },
    stdio: ["ignore", "pipe", "ignore"],
  });
  return Object.fromEntries(JSON.parse(output).benchmarks.map((entry) => [entry.name, entry.real_time]));
}

run(path.join(root, "tools/build"), ["bench", "bench_parsing"]);
fs.mkdirSync(sdkFolder, { recursive: true });
if (!fs.existsSync(path.join(sdkFolder, "package.json"))) fs.writeFileSync(path.join(sdkFolder, "package.json"), "{}");
run("npm", ["install", "--ignore-scripts", "--no-audit", "--no-fund", "--loglevel=error", ...packages], { cwd: sdkFolder });

const best = {};
const keep = (name, value) => (best[name] = Math.min(best[name] ?? Infinity, value));
const keepOwn = () => Object.entries(ownTimes(sdkFolder)).forEach(([name, value]) => keep(name, value));
keepOwn();
const OpenAI = await installedSDK("openai");
const Anthropic = await installedSDK("@anthropic-ai/sdk");
const openAI = new OpenAI({ apiKey: "none", fetch: fetchOf(path.join(sdkFolder, "openai.txt")) });
const anthropic = new Anthropic({ apiKey: "none", fetch: fetchOf(path.join(sdkFolder, "anthropic.txt")) });
for (let round = 0; round < rounds; ++round) {
  for (let repetition = 0; repetition < 5; ++repetition) {
    keep("openAISDK", await time(
      () => openAI.chat.completions.create({ model: "m", messages: [], stream: true }),
      (event) => event.choices[0]?.delta?.content));
    keep("anthropicSDK", await time(
      () => anthropic.messages.create({ model: "m", max_tokens: 1, messages: [], stream: true }),
      (event) => event.type === "content_block_delta" && event.delta.text));
  }
  keepOwn();
}

console.log("10 000 deltas, best of the run     Ovrin    bare JSON parse      Node SDK");
for (const protocol of ["openAI", "anthropic"]) {
  const own = best[`${protocol}Pieces`];
  const cell = (value) => `${value.toFixed(2)} ms (${(value / own).toFixed(1)}x)`.padStart(19);
  console.log(protocol.padEnd(30) + `${own.toFixed(2)} ms`.padStart(11) + cell(best[`${protocol}BareJSON`]) + cell(best[`${protocol}SDK`]));
}
