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

}  // namespace ovrin::recorded
