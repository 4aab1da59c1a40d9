#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/app_icon_manager.h"
#include "app/appearance_manager.h"
#include "fakes/fake_application_icon.h"
#include "fakes/fake_keychain.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"

namespace ovrin {
namespace {

using theme::Appearance;
using Events = std::vector<std::string>;

TEST(AppearanceManager, FollowsTheDesktopUnlessTheUserChose) {
    Published<DesktopSettings> desktop;
    AppearanceManager manager(desktop);
    const auto appearance = [&manager] { return manager.settings()->appearance; };
    desktop.set({.appearance = Appearance::dark});
    EXPECT_EQ(appearance(), Appearance::dark);

    manager.apply(AppAppearanceMode::light);
    EXPECT_EQ(appearance(), Appearance::light);
    desktop.set({.appearance = Appearance::dark, .reducesMotion = true});
    EXPECT_EQ(appearance(), Appearance::light);
    EXPECT_TRUE(manager.settings()->reducesMotion) << "only the appearance is the user's choice";

    manager.apply(AppAppearanceMode::system);
    EXPECT_EQ(appearance(), Appearance::dark);
    manager.apply(AppAppearanceMode::dark);
    desktop.set({});
    EXPECT_EQ(appearance(), Appearance::dark);
}

class AppIconManagerTest : public testing::Test {
protected:
    std::string stored() const { return defaults.string("ovrin.entranceIconStyle").value_or("nothing"); }

    Journal journal;
    TemporaryDirectory directory;
    DefaultsStore defaults{directory.path() / "preferences.json"};
    FakeKeychain keychain;
    KeychainStore keychainStore{keychain};
    AppConfig config{defaults, [] { return Environment(); }, keychainStore};
    FakeApplicationIcon icon{journal};
};

TEST_F(AppIconManagerTest, ShowsTheStoredChoiceAndStoresANewOne) {
    AppIconManager manager(config, defaults, icon);
    EXPECT_EQ(journal.take(), Events{"EntranceIconLight"});
    manager.select(EntranceIconStyle::light);
    EXPECT_EQ(journal.take(), Events{});
    EXPECT_EQ(stored(), "nothing") << "the current choice is not written again";
    manager.select(EntranceIconStyle::dark);
    EXPECT_EQ(journal.take(), Events{"EntranceIconDark"});
    EXPECT_EQ(stored(), "dark");

    defaults.setString("ovrin.entranceIconStyle", "light");
    manager.applySavedIcon();
    EXPECT_EQ(manager.style().value(), EntranceIconStyle::light);
    EXPECT_EQ(journal.take(), Events{"EntranceIconLight"});
}

TEST_F(AppIconManagerTest, AMissingPictureLeavesTheOneOnShow) {
    icon.images = {"EntranceIconLight"};
    AppIconManager manager(config, defaults, icon);
    manager.select(EntranceIconStyle::dark);
    EXPECT_EQ(manager.style().value(), EntranceIconStyle::dark);
    EXPECT_EQ(manager.image().value(), "EntranceIconLight");
    EXPECT_EQ(journal.take(), Events{"EntranceIconLight"});
}

}  // namespace
}  // namespace ovrin
