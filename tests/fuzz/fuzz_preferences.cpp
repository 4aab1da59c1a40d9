// Whatever the preferences file holds, every preference can be read, and one that is set is read back; a file that was
// unreadable is kept aside, and one that was readable keeps its other values.
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include <unistd.h>

#include "check.h"
#include "storage/defaults_store.h"
#include "storage/preferences.h"

namespace {

namespace fs = std::filesystem;

// A folder of this process, removed at its end.
class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "ovrin-fuzz-XXXXXX").string();
        OVRIN_CHECK(::mkdtemp(name.data()) != nullptr);
        path_ = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path_); }
    fs::path file() const { return path_ / "preferences.json"; }
    void empty() const {
        for (const fs::directory_entry& entry : fs::directory_iterator(path_)) fs::remove_all(entry);
    }

private:
    fs::path path_;
};

using Values = std::map<std::string_view, std::optional<std::string>>;

Values valuesOf(const ovrin::DefaultsStore& store) {
    Values values;
    for (const ovrin::Preference& preference : ovrin::allPreferences) {
        values[preference.key] = store.string(preference.key);
        store.boolean(preference.key);
        store.integer(preference.key);
    }
    return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Folder folder;
    folder.empty();
    std::ofstream(folder.file(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    ovrin::DefaultsStore store(folder.file());
    Values expected = valuesOf(store);
    store.setInteger(ovrin::preference::maxOutputTokens, 7);
    expected[ovrin::preference::maxOutputTokens] = "7";
    OVRIN_CHECK(valuesOf(store) == expected);
    OVRIN_CHECK(valuesOf(ovrin::DefaultsStore(folder.file())) == expected);
    return 0;
}
