#include "settings/model_choices.h"

#include <utility>

#include "base/error.h"
#include "model/model_list.h"

namespace ovrin {
namespace {

// More than that nobody looks through in a menu.
constexpr std::size_t mostModelChoices = 500;

}  // namespace

ModelChoicesLoader::ModelChoicesLoader(EventLoop& loop, EventLoop& ioLoop, HTTPClientProtocol& http,
                                       std::function<void(const std::string& reason)> failed)
    : ioLoop_(ioLoop), http_(http), failed_(std::move(failed)), question_(loop) {}

void ModelChoicesLoader::load(HTTPRequest request) {
    choices_.set({.kind = ModelChoices::Kind::loading});
    question_.replace(read(std::move(request)));
}

Task<void> ModelChoicesLoader::read(HTTPRequest request) {
    ModelChoices choices;
    try {
        ModelList list = co_await fetchModelList(ioLoop_, http_, std::move(request));
        if (list.names.empty()) throw Error("此服务没有模型。");
        choices = {.kind = ModelChoices::Kind::ready, .names = std::move(list.names)};
        if (choices.names.size() > mostModelChoices) {
            choices.omitted = choices.names.size() - mostModelChoices;
            choices.names.resize(mostModelChoices);
        }
    } catch (const Error& error) {
        failed_(error.errorDescription());
    }
    choices_.set(std::move(choices));
}

void ModelChoicesLoader::forget() {
    question_.cancel();
    choices_.set({});
}

}  // namespace ovrin
