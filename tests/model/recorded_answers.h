// What servers of models on one's own machine answer, in their own words.
#pragma once

#include <string_view>

namespace ovrin::recorded {

inline constexpr std::string_view llamaCppModels =
    R"({"models":[{"name":"SmolLM2-135M-Instruct","model":"SmolLM2-135M-Instruct","modified_at":"","size":"","digest":"",)"
    R"("type":"model","description":"","tags":[""],"capabilities":["completion"],"parameters":"","details":)"
    R"({"parent_model":"","format":"gguf","family":"","families":[""],"parameter_size":"","quantization_level":""}}],)"
    R"("object":"list","data":[{"id":"SmolLM2-135M-Instruct","object":"model","created":1764100000,)"
    R"("owned_by":"llamacpp","meta":{"vocab_type":2,"n_vocab":49152,"n_ctx_train":8192,"n_embd":576}}]})";
inline constexpr std::string_view ollamaModels =
    R"({"object":"list","data":[{"id":"qwen3:8b","object":"model","created":1764100000,"owned_by":"library"},)"
    R"({"id":"llama3.2:latest","object":"model","created":1764000000,"owned_by":"library"}]})"
    "\n";
inline constexpr std::string_view ollamaWithoutModels = R"({"object":"list","data":null})"
                                                        "\n";
inline constexpr std::string_view lmStudioModels =
    "{\n  \"data\": [\n    {\n      \"id\": \"qwen2.5-7b-instruct\",\n      \"object\": \"model\",\n"
    "      \"owned_by\": \"organization_owner\"\n    }\n  ],\n  \"object\": \"list\"\n}";
inline constexpr std::string_view vllmModels =
    R"({"object":"list","data":[{"id":"Qwen/Qwen3-8B","object":"model","created":1764100000,"owned_by":"vllm",)"
    R"("root":"Qwen/Qwen3-8B","parent":null,"max_model_len":40960,"permission":[{"id":"modelperm-1","object":)"
    R"("model_permission","created":1764100000,"allow_sampling":true,"organization":"*","group":null}]}]})";

inline constexpr std::string_view refusedTemperature =
    R"({"error":{"message":"Unsupported value: 'temperature' does not support 0.2 with this model.","type":)"
    R"("invalid_request_error","param":"temperature","code":"unsupported_value"}})";
inline constexpr std::string_view deprecatedTemperature =
    R"({"type":"error","error":{"type":"invalid_request_error","message":"`temperature` is deprecated for this model."}})";
// llama.cpp: the code is a number.
inline constexpr std::string_view contextExceeded =
    R"({"error":{"code":400,"message":"the request exceeds the available context size, try increasing it","type":)"
    R"("exceed_context_size_error","n_prompt_tokens":9001,"n_ctx":4096}})";

inline constexpr std::string_view llamaCppStream =
    R"(data: {"choices":[{"finish_reason":null,"index":0,"delta":{"role":"assistant","content":null}}],"created":1764100000,"id":"chatcmpl-1","model":"SmolLM2","system_fingerprint":"b7000","object":"chat.completion.chunk"}

data: {"choices":[{"finish_reason":null,"index":0,"delta":{"content":"Paris"}}],"created":1764100000,"id":"chatcmpl-1","model":"SmolLM2","object":"chat.completion.chunk"}

data: {"choices":[{"finish_reason":null,"index":0,"delta":{"content":"."}}],"created":1764100000,"id":"chatcmpl-1","model":"SmolLM2","object":"chat.completion.chunk"}

data: {"choices":[{"finish_reason":"stop","index":0,"delta":{}}],"created":1764100000,"id":"chatcmpl-1","model":"SmolLM2","object":"chat.completion.chunk","timings":{"prompt_n":20,"predicted_per_second":41.5}}

data: [DONE]

)";
// A thinking model: what it thinks under a key of its own, beside an empty content.
inline constexpr std::string_view ollamaStream =
    R"(data: {"id":"chatcmpl-2","object":"chat.completion.chunk","created":1764100000,"model":"qwen3:8b","system_fingerprint":"fp_ollama","choices":[{"index":0,"delta":{"role":"assistant","content":"","reasoning":"Okay"},"finish_reason":null}]}

data: {"id":"chatcmpl-2","object":"chat.completion.chunk","created":1764100000,"model":"qwen3:8b","system_fingerprint":"fp_ollama","choices":[{"index":0,"delta":{"role":"assistant","content":"Paris."},"finish_reason":null}]}

data: {"id":"chatcmpl-2","object":"chat.completion.chunk","created":1764100000,"model":"qwen3:8b","system_fingerprint":"fp_ollama","choices":[{"index":0,"delta":{"role":"assistant","content":""},"finish_reason":"stop"}]}

data: [DONE]

)";
inline constexpr std::string_view lmStudioStream =
    R"(data: {"id":"chatcmpl-3","object":"chat.completion.chunk","created":1764100000,"model":"qwen2.5-7b-instruct","system_fingerprint":"qwen2.5-7b-instruct","choices":[{"index":0,"delta":{"role":"assistant","content":"Paris"},"logprobs":null,"finish_reason":null}]}

data: {"id":"chatcmpl-3","object":"chat.completion.chunk","created":1764100000,"model":"qwen2.5-7b-instruct","choices":[{"index":0,"delta":{"content":"."},"logprobs":null,"finish_reason":null}]}

data: {"id":"chatcmpl-3","object":"chat.completion.chunk","created":1764100000,"model":"qwen2.5-7b-instruct","choices":[{"index":0,"delta":{},"logprobs":null,"finish_reason":"stop"}]}

data: [DONE]

)";
inline constexpr std::string_view vllmStream =
    R"(data: {"id":"chatcmpl-4","object":"chat.completion.chunk","created":1764100000,"model":"Qwen/Qwen3-8B","choices":[{"index":0,"delta":{"role":"assistant","content":""},"logprobs":null,"finish_reason":null}],"prompt_token_ids":null}

data: {"id":"chatcmpl-4","object":"chat.completion.chunk","created":1764100000,"model":"Qwen/Qwen3-8B","choices":[{"index":0,"delta":{"reasoning_content":"Okay"},"logprobs":null,"finish_reason":null,"token_ids":null}]}

data: {"id":"chatcmpl-4","object":"chat.completion.chunk","created":1764100000,"model":"Qwen/Qwen3-8B","choices":[{"index":0,"delta":{"content":"Paris."},"logprobs":null,"finish_reason":"stop","stop_reason":null}]}

data: {"id":"chatcmpl-4","object":"chat.completion.chunk","created":1764100000,"model":"Qwen/Qwen3-8B","choices":[],"usage":{"prompt_tokens":20,"total_tokens":30,"completion_tokens":10}}

data: [DONE]

)";
// A server that leaves the tags of the model's template in the text.
inline constexpr std::string_view thinkingTagsStream =
    R"(data: {"choices":[{"index":0,"delta":{"content":"<think>"}}]}

data: {"choices":[{"index":0,"delta":{"content":"\nOkay, the user asks"}}]}

data: {"choices":[{"index":0,"delta":{"content":"\n</think>"}}]}

data: {"choices":[{"index":0,"delta":{"content":"\n\nParis."}}]}

data: [DONE]

)";
inline constexpr std::string_view llamaCppAnswer =
    R"({"choices":[{"finish_reason":"stop","index":0,"message":{"role":"assistant","content":"<think>Okay</think>\n\nParis."}}],)"
    R"("created":1764100000,"model":"SmolLM2","object":"chat.completion","usage":{"completion_tokens":3},"id":"chatcmpl-5"})";
inline constexpr std::string_view onlyThoughts =
    R"({"choices":[{"finish_reason":"length","index":0,"message":{"role":"assistant","content":"<think>Okay, so"}}]})";

}  // namespace ovrin::recorded
