// SPDX-License-Identifier: MIT
// Damage that was found to spread: small packages, each with the fewest calls that showed it.
#include <algorithm>

#include "tests/support/store_fixture.h"

namespace {

class DamagedPackage : public StoreTest {
protected:
    DamagedPackage() { Damaged(); }

    /// Whether no block belongs to two of the files.
    bool Apart(const std::string& one, const std::string& other) const {
        const std::vector<int> blocks = ChainOf(one), others = ChainOf(other);
        return std::find_first_of(blocks.begin(), blocks.end(), others.begin(), others.end()) == blocks.end();
    }
};

TEST_F(DamagedPackage, AFileThatLostItsEndKeepsItsBlocksWhenThePackageGrows) {
    Create();
    Write("lost", 4 * VLT_BLOCK_SIZE);
    vlt_package_close_all();
    Bytes host = ReadHostFile(path);
    host.resize(3 * VLT_BLOCK_SIZE);
    WriteHostFile(path, host);
    for (const std::size_t length : {8192u, 4097u}) {
        Reopen();
        Write("new", length);
        EXPECT_TRUE(Apart("new", "lost"));
        const std::uint32_t lost = OpenFor("lost", VLT_MODE_WRITE);
        EXPECT_TRUE(WriteTo(lost, Pattern("other", 4 * VLT_BLOCK_SIZE)));
        EXPECT_TRUE(Intact("new", length));
        vlt_package_close_all();
    }
}

}  // namespace
