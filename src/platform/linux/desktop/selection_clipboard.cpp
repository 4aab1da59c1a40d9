#include "platform/linux/desktop/selection_clipboard.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include <glib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/files.h"
#include "base/text.h"
#include "base/worker_executor.h"

namespace ovrin {

namespace {

using Bytes = SelectionClient::Bytes;
using Source = SelectionClient::Source;

// What owners call their pictures, the lossless and most common first.
constexpr std::array imageTypes{"image/png", "image/bmp", "image/tiff", "image/jpeg", "image/webp", "image/gif"};
constexpr std::array imageEndings{".png", ".bmp", ".tif", ".tiff", ".jpg", ".jpeg", ".webp", ".gif"};
constexpr const char* uriListType = "text/uri-list";
constexpr std::size_t largestImageFile = std::size_t{512} << 20U;

constexpr const char* utf8Type = "UTF8_STRING";
constexpr const char* latin1Type = "STRING";
// The names of plain text, the most certain of their encoding first. All but STRING hold UTF-8 on today's desktops.
constexpr std::array textTypes{utf8Type,  "text/plain;charset=utf-8", "text/plain;charset=UTF-8", "text/plain", "TEXT",
                               latin1Type};

Bytes bytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::string latin1ToUtf8(const Bytes& bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        const auto value = std::to_integer<unsigned char>(byte);
        if (value < 0x80) {
            text += static_cast<char>(value);
        } else {
            text += static_cast<char>(0xC0U | value >> 6U);
            text += static_cast<char>(0x80U | (value & 0x3FU));
        }
    }
    return text;
}

std::string textOf(const Bytes& bytes, std::string_view type) {
    std::string text = type == latin1Type
                           ? latin1ToUtf8(bytes)
                           : text::repairedUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    // Some owners send the zero that ends their strings.
    while (!text.empty() && text.back() == '\0') text.pop_back();
    return text;
}

std::optional<std::string> firstOffered(std::span<const char* const> wanted, const std::vector<std::string>& offered) {
    for (const char* const type : wanted) {
        if (std::ranges::find(offered, type) != offered.end()) return type;
    }
    return std::nullopt;
}

std::optional<std::string> plainText(SelectionClient& selection, Source source) {
    const std::optional<std::string> type = firstOffered(textTypes, selection.targets(source));
    if (!type) return std::nullopt;
    const std::optional<Bytes> bytes = selection.convert(*type, source);
    if (!bytes) return std::nullopt;
    return textOf(*bytes, *type);
}

// The path of the first file of a list (RFC 2483), when its name is a picture's.
std::optional<std::filesystem::path> pictureFile(const Bytes& uriList) {
    const std::string list = textOf(uriList, uriListType);
    const std::string uri(text::trimmed(list.substr(0, list.find('\n'))));
    const std::unique_ptr<char, decltype(&g_free)> path(g_filename_from_uri(uri.c_str(), nullptr, nullptr), &g_free);
    if (!path) return std::nullopt;
    std::filesystem::path file(path.get());
    const std::string ending = text::asciiLowercased(file.extension().string());
    if (std::ranges::find(imageEndings, ending) == imageEndings.end()) return std::nullopt;
    return file;
}

// What may be a picture: the bytes of one, or the file that holds them.
struct PictureSource {
    Bytes bytes{};
    std::optional<std::filesystem::path> file{};
    std::size_t place = 0;  // among the forms in which the clipboard may have it
};

std::optional<PictureSource> sourceOfType(SelectionClient& selection, const std::string& type) {
    std::optional<Bytes> bytes = selection.convert(type, Source::clipboard);
    if (!bytes) return std::nullopt;
    if (type != uriListType) return PictureSource{.bytes = std::move(*bytes)};
    std::optional<std::filesystem::path> file = pictureFile(*bytes);
    if (!file) return std::nullopt;
    return PictureSource{.file = std::move(file)};
}

// The first that can be had from this place on.
std::optional<PictureSource> picture(SelectionClient& selection, std::size_t place) {
    std::vector<std::string> types(imageTypes.begin(), imageTypes.end());
    types.emplace_back(uriListType);
    const std::vector<std::string> offered = selection.targets(Source::clipboard);
    for (; place < types.size(); ++place) {
        if (std::ranges::find(offered, types[place]) == offered.end()) continue;
        std::optional<PictureSource> source = sourceOfType(selection, types[place]);
        if (!source) continue;
        source->place = place;
        return source;
    }
    return std::nullopt;
}

// Anything but a file of bytes could keep its reader waiting.
std::string contentOf(const std::filesystem::path& file) {
    std::error_code status;
    if (!std::filesystem::is_regular_file(file, status)) throw Error("no file of bytes");
    return files::readFile(file, largestImageFile);
}

std::optional<Image> decoded(const ImageDecoder& decoder, const PictureSource& source) {
    try {
        if (!source.file) return decoder.decode(source.bytes);
        const std::string content = contentOf(*source.file);
        return decoder.decode(std::as_bytes(std::span(content)));
    } catch (const Error&) {
        return std::nullopt;  // what cannot be read is no picture
    }
}

std::vector<ClipboardItem> everything(SelectionClient& selection) {
    ClipboardItem item;
    for (std::string& type : selection.targets(Source::clipboard)) {
        std::optional<Bytes> data = selection.convert(type, Source::clipboard);
        if (data && !data->empty()) item.push_back({.type = std::move(type), .data = std::move(*data)});
    }
    if (item.empty()) return {};
    return {std::move(item)};
}

}  // namespace

SelectionClipboard::WakeDescriptor::WakeDescriptor() : value(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (value < 0) throw Error("系统资源不足，剪贴板不可用。");
}

SelectionClipboard::WakeDescriptor::~WakeDescriptor() {
    ::close(value);
}

SelectionClipboard::SelectionClipboard(const Connect& connect, const ImageDecoder& decoder, WorkerExecutor& workers)
    : decoder_(decoder),
      workers_(workers),
      selection_(connect(
          {.wakeDescriptor = wake_.value, .closing = closing_.get_token(), .changedByOthers = [this] { ++changes_; }})),
      thread_([this] { run(); }) {}

SelectionClipboard::~SelectionClipboard() {
    closing_.request_stop();
    post([this](SelectionClient& selection) {
        selection.handOver();
        isOver_ = true;
    });
    thread_.join();
}

void SelectionClipboard::post(Job job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    const std::uint64_t one = 1;
    static_cast<void>(::write(wake_.value, &one, sizeof one));  // a full counter wakes as well
}

// A wait in the middle of a job may have been woken for the next one, so no other wake-up is awaited then.
void SelectionClipboard::run() {
    while (!isOver_) {
        if (const std::optional<Job> job = nextJob()) {
            (*job)(*selection_);
        } else {
            selection_->pump();
        }
    }
}

std::optional<SelectionClipboard::Job> SelectionClipboard::nextJob() {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty()) return std::nullopt;
    std::optional<Job> job(std::move(jobs_.front()));
    jobs_.pop_front();
    return job;
}

// Has the thread find the answer and brings it back to the awaiting loop.
template <typename Result>
Task<Result> SelectionClipboard::ask(std::function<Result(SelectionClient&)> question) {
    auto [answers, writer] = makeStream<Result>();
    Job job = [question = std::move(question),
               writer = std::make_shared<StreamWriter<Result>>(std::move(writer))](SelectionClient& selection) {
        if (!writer->stopToken().stop_requested()) writer->push(question(selection));
        writer->finish();
    };
    post(std::move(job));
    std::optional<Result> answer = co_await answers.next();
    co_return answer ? std::move(*answer) : Result{};
}

Task<std::optional<std::string>> SelectionClipboard::readString() {
    return ask<std::optional<std::string>>(
        [](SelectionClient& selection) { return plainText(selection, Source::clipboard); });
}

Task<std::optional<std::string>> SelectionClipboard::readSelectedText() {
    return ask<std::optional<std::string>>(
        [](SelectionClient& selection) { return plainText(selection, Source::primary); });
}

Task<std::vector<ClipboardItem>> SelectionClipboard::readItems() {
    return ask<std::vector<ClipboardItem>>(everything);
}

// An owner may promise more forms than it has, or damaged ones: the first that is a picture counts.
Task<std::optional<Image>> SelectionClipboard::readImage() {
    std::size_t place = 0;
    while (true) {
        std::function<std::optional<PictureSource>(SelectionClient&)> next = [place](SelectionClient& selection) {
            return picture(selection, place);
        };
        std::optional<PictureSource> source = co_await ask(std::move(next));
        if (!source) co_return std::nullopt;
        place = source->place + 1;
        auto decode = [&decoder = decoder_, source = std::move(*source)](const std::stop_token&) {
            return decoded(decoder, source);
        };
        std::optional<Image> image = co_await workers_.run(std::move(decode));
        if (image) co_return image;
    }
}

void SelectionClipboard::writeString(std::string text) {
    ClipboardItem item;
    for (const char* const type : textTypes) {
        // Of old programs that know only Latin letters, those get the text whose letters they know.
        const bool isAscii = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (type != latin1Type || isAscii) item.push_back({.type = type, .data = bytesOf(text)});
    }
    writeItems({std::move(item)});
}

void SelectionClipboard::writeItems(std::vector<ClipboardItem> items) {
    // Display servers know no items: the forms of all are offered, of equal ones the first.
    auto forms = std::make_shared<ClipboardItem>();
    for (ClipboardItem& item : items) {
        for (ClipboardRepresentation& form : item) {
            if (std::ranges::find(*forms, form.type, &ClipboardRepresentation::type) == forms->end()) {
                forms->push_back(std::move(form));
            }
        }
    }
    ++changes_;
    post([forms](SelectionClient& selection) { selection.own(std::move(*forms)); });
}

}  // namespace ovrin
