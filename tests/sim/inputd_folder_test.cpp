// SPDX-License-Identifier: MIT
// Noticing new input devices, with plain files in their place.
#include "tools/inputd_devices.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using ux::inputd::device_folder;
using names = std::vector<std::string>;

class InputdFolder : public testing::Test {
  protected:
    InputdFolder() {
        std::string above = (fs::temp_directory_path() / "ux-inputd-XXXXXX").string();
        m_above = mkdtemp(above.data());
        m_path = (m_above / "input").string();
    }
    ~InputdFolder() override { fs::remove_all(m_above); }

    void make_folder() const { fs::create_directory(m_path); }
    std::string make(const std::string &name) const {
        std::ofstream(m_path + "/" + name).flush();
        return m_path + "/" + name;
    }

    fs::path m_above;
    std::string m_path;
};

TEST_F(InputdFolder, TellsDevicesThatComeAndNothingElse) {
    make_folder();
    const std::string first = make("event0");
    device_folder folder(m_path);
    EXPECT_EQ(folder.devices(), names{first});
    EXPECT_EQ(folder.changes(), names{});
    make("mouse0");
    const std::string second = make("event1");
    EXPECT_EQ(folder.changes(), names{second});
    EXPECT_EQ(folder.changes(), names{});
}

TEST_F(InputdFolder, TellsADeviceWhosePermissionsChange) {
    make_folder();
    const std::string device = make("event0");
    device_folder folder(m_path);
    fs::permissions(device, fs::perms::owner_read);
    EXPECT_EQ(folder.changes(), names{device});
}

TEST_F(InputdFolder, MayComeLaterAndGoAndComeAgain) {
    device_folder folder(m_path);
    EXPECT_EQ(folder.devices(), names{});
    make_folder();
    const std::string first = make("event0");
    EXPECT_EQ(folder.changes(), names{first});
    const std::string second = make("event1");
    EXPECT_EQ(folder.changes(), names{second});

    fs::remove_all(m_path);
    EXPECT_EQ(folder.changes(), names{});
    make_folder();
    EXPECT_EQ(folder.changes(), names{});
    make("event0");
    EXPECT_EQ(folder.changes(), names{first});
}

TEST_F(InputdFolder, TellsAllWhenTheKernelHasLostCount) {
    make_folder();
    device_folder folder(m_path);
    int most = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
    ASSERT_GT(most, 0);
    for (int count = 0; count <= most; count++) {
        fs::remove(make("x" + std::to_string(count)));
    }
    const std::string last = make("event9");
    EXPECT_EQ(folder.changes(), names{last});
}

TEST_F(InputdFolder, NeedsTheFolderAbove) {
    EXPECT_THROW(device_folder("/nowhere/input"), std::exception);
}

} // namespace
