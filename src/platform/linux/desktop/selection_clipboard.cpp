#include "platform/linux/desktop/selection_clipboard.h"

#include <algorithm>
#include <array>
#include <exception>
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

// Display servers know no items: the forms of all are offered, of equal ones the first.
ClipboardItem formsOf(std::vector<ClipboardItem> items, const ImageEncoder& encoder) {
    ClipboardItem forms;
    for (ClipboardItem& item : items) {
        for (ClipboardRepresentation& form : item) {
            const bool isKnown = std::ranges::find(forms, form.type, &ClipboardRepresentation::type) != forms.end();
            const bool canBeHad = form.encodedFrom.empty() || encoder.canEncode(form.type);
            if (!isKnown && canBeHad) forms.push_back(std::move(form));
        }
    }
    return forms;
}

}  // namespace

SelectionClipboard::Jobs::Jobs() : wakeDescriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (wakeDescriptor_ < 0) throw Error("系统资源不足，剪贴板不可用。");
}

SelectionClipboard::Jobs::~Jobs() {
    ::close(wakeDescriptor_);
}

void SelectionClipboard::Jobs::post(Job job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    wake();
}

void SelectionClipboard::Jobs::wake() const {
    const std::uint64_t one = 1;
    static_cast<void>(::write(wakeDescriptor_, &one, sizeof one));  // a full counter wakes as well
}

std::optional<SelectionClipboard::Job> SelectionClipboard::Jobs::next() {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty()) return std::nullopt;
    std::optional<Job> job(std::move(jobs_.front()));
    jobs_.pop_front();
    return job;
}

SelectionClipboard::SelectionClipboard(const Connect& connect, const ImageDecoder& decoder, const ImageEncoder& encoder,
                                       WorkerExecutor& workers)
    : decoder_(decoder), encoder_(encoder), workers_(workers), selection_(connect(user())), thread_([this] {
          run();
      }) {}

SelectionClient::User SelectionClipboard::user() {
    return {.wakeDescriptor = jobs_->wakeDescriptor(),
            .isGivenUp = [this] { return closing_.stop_requested() || reader_.stop_requested(); },
            .changedByOthers = [this](Source source) { countChange(source); },
            .readByOthers = [this] { ++readsByOthers_; },
            .encode = [this](auto picture, auto type,
                             auto done) { encode(std::move(picture), std::move(type), std::move(done)); }};
}

// The work may end after this object: what it knows of it are the jobs, which nobody does any more then. While the
// program closes nobody is to wait for it.
void SelectionClipboard::encode(std::shared_ptr<const Bytes> picture, std::string type,
                                std::function<void(Bytes)> done) {
    if (closing_.stop_requested()) return done({});
    workers_.post([&encoder = encoder_, jobs = jobs_, picture = std::move(picture), type = std::move(type),
                   done = std::move(done)](const std::stop_token&) {
        auto made = std::make_shared<Bytes>(encoder.encode(*picture, type));
        jobs->post([done, made](SelectionClient&) { done(std::move(*made)); });
    });
}

SelectionClipboard::~SelectionClipboard() {
    closing_.request_stop();
    jobs_->post([this](SelectionClient& selection) {
        selection.handOver();
        isOver_ = true;
    });
    thread_.join();
}

// A wait in the middle of a job may have been woken for the next one, so no other wake-up is awaited then.
void SelectionClipboard::run() {
    while (!isOver_) {
        if (const std::optional<Job> job = jobs_->next()) {
            (*job)(*selection_);
        } else {
            selection_->pump();
        }
    }
}

// Has the thread find the answer and brings it back to the awaiting loop. A reader that goes ends the search, so that
// the next job is not kept waiting.
template <typename Result>
Task<Result> SelectionClipboard::ask(std::function<Result(SelectionClient&)> question) {
    auto [answers, writer] = makeStream<Result>();
    Job job = [this, question = std::move(question),
               writer = std::make_shared<StreamWriter<Result>>(std::move(writer))](SelectionClient& selection) {
        reader_ = writer->stopToken();
        const std::stop_callback wake(reader_, [this] { jobs_->wake(); });
        std::exception_ptr failure;
        try {
            if (!reader_.stop_requested()) writer->push(question(selection));
        } catch (const Error&) {
            failure = std::current_exception();
        }
        // Outside the handler, which would keep a hold on what the awaiting thread throws.
        if (failure) {
            writer->fail(std::move(failure));
        } else {
            writer->finish();
        }
        reader_ = {};
    };
    jobs_->post(std::move(job));
    std::optional<Result> answer = co_await answers.next();
    co_return answer ? std::move(*answer) : Result{};
}

// What cannot be had counts as absent.
template <typename Result>
Task<Result> SelectionClipboard::askForAny(std::function<Result(SelectionClient&)> question) {
    return ask<Result>([question = std::move(question)](SelectionClient& selection) {
        try {
            return question(selection);
        } catch (const Error&) {
            return Result{};
        }
    });
}

Task<std::optional<std::string>> SelectionClipboard::readString(Source source) {
    return ask<std::optional<std::string>>(
        [source](SelectionClient& selection) { return plainText(selection, source); });
}

Task<std::vector<std::vector<std::string>>> SelectionClipboard::readTypes(Source source) {
    using Types = std::vector<std::vector<std::string>>;
    return askForAny<Types>([source](SelectionClient& selection) {
        std::vector<std::string> types = selection.targets(source);
        return types.empty() ? Types{} : Types{std::move(types)};
    });
}

Task<std::vector<std::byte>> SelectionClipboard::readForm(std::size_t item, std::string type, Source source) {
    return askForAny<Bytes>([item, type = std::move(type), source](SelectionClient& selection) {
        return item == 0 ? selection.convert(type, source).value_or(Bytes{}) : Bytes{};
    });
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

void SelectionClipboard::writeString(std::string text, Source source) {
    ClipboardItem item;
    for (const char* const type : textTypes) {
        // Of old programs that know only Latin letters, those get the text whose letters they know.
        const bool isAscii = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        if (type != latin1Type || isAscii) item.push_back({.type = type, .data = bytesOf(text)});
    }
    writeItems({std::move(item)}, source);
}

void SelectionClipboard::writeItems(std::vector<ClipboardItem> items, Source source) {
    auto all = std::make_shared<std::vector<ClipboardItem>>(std::move(items));
    countChange(source);
    jobs_->post([all, source, &encoder = encoder_](SelectionClient& selection) {
        selection.own(source, formsOf(std::move(*all), encoder));
    });
}

}  // namespace ovrin
