#include <gtest/gtest.h>

#include "model/context.hpp"
#include "model/project_file.hpp"

namespace velm {
namespace {

TEST(VdfRoundTrip, NewProjectWritesReadsAndWritesTheSameBytes) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    Project a;
    NewProject(a);
    const std::string b = WriteVdf(ctx, a);
    Project p;
    NewProject(p);
    ASSERT_TRUE(read_vdf_text(ctx, p, b));
    const std::string c = WriteVdf(ctx, p);
    EXPECT_EQ(b, c);
    EXPECT_TRUE(ui.told.empty()) << ui.told.front();
}

}  // namespace
}  // namespace velm
