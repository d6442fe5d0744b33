#include "classic/CanFilterDialogLogic.h"
#include "classic/FltFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace {

using Names = std::vector<std::string>;

CanFilterDialogState Listed(Names names, const std::string& chosen, bool activate) {
    CanFilterDialogState state;
    BeginCanFilterRun(state, activate, chosen, false);
    RefillCanFilterList(state, std::move(names));
    return state;
}

TEST(CanFilterDialogLogic, RefillSelectsTheChosenFilterOrTheFirst) {
    CanFilterDialogState state;
    BeginCanFilterRun(state, true, "b.flt", true);
    RefillCanFilterList(state, {"a.flt", "b.flt", "c.flt"});
    EXPECT_EQ(state.selection, 1);
    EXPECT_FALSE(state.automatic);
    EXPECT_TRUE(CanFilterEntryButtonsEnabled(state));

    BeginCanFilterRun(state, true, "gone.flt", true);
    RefillCanFilterList(state, {"a.flt", "b.flt"});
    EXPECT_EQ(*SelectedCanFilter(state), "a.flt");

    // No entries: nothing selected, buttons off, and the automatic mode stays.
    BeginCanFilterRun(state, true, "b.flt", true);
    RefillCanFilterList(state, {});
    EXPECT_EQ(SelectedCanFilter(state), nullptr);
    EXPECT_FALSE(CanFilterEntryButtonsEnabled(state));
    EXPECT_TRUE(state.automatic);
}

TEST(CanFilterDialogLogic, ActivateClickSetsOrDropsTheChoice) {
    CanFilterDialogState state = Listed({"a.flt"}, "a.flt", false);
    ToggleCanFilterActivate(state);
    EXPECT_TRUE(state.activate);
    EXPECT_TRUE(state.changed);
    ToggleCanFilterActivate(state);
    EXPECT_FALSE(state.activate);
    EXPECT_FALSE(state.changed);
    EXPECT_EQ(state.filterName, "");
}

// The dialog lives as long as its document: each run starts from the document's
// request and remembers only the last accepted filter.
TEST(CanFilterDialogLogic, OkAppliesOnlyWhatIsNewAcrossRuns) {
    CanFilterDialogState state;
    const Names found = {"a.flt", "b.flt"};

    // Offered again at opening: the first OK applies the history's filter.
    BeginCanFilterRun(state, true, "b.flt", true);
    RefillCanFilterList(state, found);
    AcceptCanFilter(state);
    EXPECT_TRUE(state.activate);
    EXPECT_TRUE(state.changed);
    EXPECT_EQ(state.filterName, "b.flt");

    // Same filter, OK: nothing to do.
    BeginCanFilterRun(state, true, "b.flt", false);
    RefillCanFilterList(state, found);
    AcceptCanFilter(state);
    EXPECT_TRUE(state.activate);
    EXPECT_FALSE(state.changed);

    // Another entry chosen: applied.
    BeginCanFilterRun(state, true, "b.flt", false);
    RefillCanFilterList(state, found);
    state.selection = 0;
    AcceptCanFilter(state);
    EXPECT_TRUE(state.changed);
    EXPECT_EQ(state.filterName, "a.flt");

    // Turned off, then on again with the same file: the name comes from the list.
    BeginCanFilterRun(state, true, "a.flt", false);
    RefillCanFilterList(state, found);
    ToggleCanFilterActivate(state);
    ToggleCanFilterActivate(state);
    AcceptCanFilter(state);
    EXPECT_TRUE(state.changed);
    EXPECT_EQ(state.filterName, "a.flt");

    // Switched off: the next OK with the same file applies it anew.
    BeginCanFilterRun(state, true, "a.flt", false);
    RefillCanFilterList(state, found);
    ToggleCanFilterActivate(state);
    AcceptCanFilter(state);
    EXPECT_FALSE(state.activate);
    BeginCanFilterRun(state, true, "a.flt", false);
    RefillCanFilterList(state, found);
    AcceptCanFilter(state);
    EXPECT_TRUE(state.activate);
    EXPECT_TRUE(state.changed);
}

TEST(CanFilterDialogLogic, OkWithoutSelectionSwitchesTheFilterOff) {
    CanFilterDialogState state = Listed({}, "a.flt", true);
    AcceptCanFilter(state);
    EXPECT_FALSE(state.activate);
    EXPECT_TRUE(state.changed);
}

TEST(CanFilterDialogLogic, RemovalSelectsThePreviousEntryOrTheHead) {
    CanFilterDialogState state = Listed({"a.flt", "b.flt", "c.flt"}, "c.flt", true);
    RemoveSelectedCanFilter(state);
    EXPECT_EQ(state.names, (Names{"a.flt", "b.flt"}));
    EXPECT_EQ(*SelectedCanFilter(state), "b.flt");
    EXPECT_FALSE(state.activate);

    state.selection = 0;
    RemoveSelectedCanFilter(state);
    EXPECT_EQ(*SelectedCanFilter(state), "b.flt");

    RemoveSelectedCanFilter(state);
    EXPECT_EQ(SelectedCanFilter(state), nullptr);
    EXPECT_FALSE(CanFilterEntryButtonsEnabled(state));
    RemoveSelectedCanFilter(state); // nothing left to remove
    EXPECT_TRUE(state.names.empty());

    EXPECT_EQ(CanFilterDeleteQuestion("/t/CommonCANFilters/a.flt"),
              "Do you really want to delete\n/t/CommonCANFilters/a.flt ?");
}

TEST(CanFilterDialogLogic, EditSelectsTheFileAgainAndMarksAChange) {
    CanFilterDialogState state = Listed({"a.flt", "b.flt"}, "a.flt", true);
    state.selection = 1;
    AfterCanFilterEdit(state, {"a.flt", "b.flt", "n.flt"}, "b.flt");
    EXPECT_EQ(*SelectedCanFilter(state), "b.flt");
    EXPECT_TRUE(state.changed);
    EXPECT_EQ(state.names.size(), 3u);
}

TEST(CanFilterDialogLogic, AddDecidesOnRealFiles) {
    TempDir dir;
    std::filesystem::create_directories(dir.Path() / "filters");
    const std::string source = dir.Write("src.flt", "[CAN]\r\nType=StopFilter\r\n");
    const std::string target = dir.File("filters/src.flt");

    EXPECT_EQ(DecideCanFilterAdd(source, target), CanFilterAddStep::Copy);
    EXPECT_EQ(DecideCanFilterAdd(source, dir.File("filters/../src.flt")), CanFilterAddStep::SameFile);
    ASSERT_TRUE(CopyFilterFile(source, target));
    EXPECT_EQ(TempDir::Read(target), TempDir::Read(source));
    EXPECT_EQ(DecideCanFilterAdd(target, target), CanFilterAddStep::SameFile);
    EXPECT_EQ(DecideCanFilterAdd(source, target), CanFilterAddStep::AskOverwrite);
    EXPECT_FALSE(CopyFilterFile(source, target)); // never over an existing file

    // A read-only target is made writable and replaced.
    chmod(target.c_str(), 0444);
    ASSERT_TRUE(RemoveFilterFile(target));
    EXPECT_TRUE(CopyFilterFile(source, target));
    EXPECT_FALSE(CopyFilterFile(dir.File("absent.flt"), dir.File("filters/absent.flt")));
}

TEST(CanFilterDialogLogic, FilterFolderIsMadeOnlyBelowAnExistingParent) {
    TempDir dir;
    std::filesystem::create_directories(dir.Path() / "projects/Golf");
    EXPECT_TRUE(EnsureFilterDirectory(dir.File("projects/Golf/flt/")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.Path() / "projects/Golf/flt"));
    EXPECT_TRUE(EnsureFilterDirectory(dir.File("projects/Golf/flt/")));
    EXPECT_FALSE(EnsureFilterDirectory(dir.File("projects/Polo/flt/")));
    EXPECT_FALSE(std::filesystem::exists(dir.Path() / "projects/Polo"));
    // Without a trace path in the settings the common folder would sit at the root.
    EXPECT_FALSE(EnsureFilterDirectory("/CommonCANFilters-of-no-trace-path/"));
    EXPECT_FALSE(std::filesystem::exists("/CommonCANFilters-of-no-trace-path"));
}

TEST(CanFilterDialogLogic, AddedNamesJoinTheListInOrderOnce) {
    CanFilterDialogState state = Listed({"a.flt", "c.flt"}, "a.flt", false);
    AddCanFilterToList(state, "B.flt");
    EXPECT_EQ(state.names, (Names{"a.flt", "B.flt", "c.flt"}));
    EXPECT_EQ(state.selection, 1);
    state.selection = 0;
    AddCanFilterToList(state, "c.flt"); // replaced, already listed
    EXPECT_EQ(state.names.size(), 3u);
    EXPECT_EQ(state.selection, 0);
}

TEST(CanFilterDialogLogic, ListsOnlyFilterFiles) {
    TempDir dir;
    dir.Write("b.flt", "");
    dir.Write("A.FLT", "");
    dir.Write("c.flt.bak", "");
    dir.Write("flt", "");
    std::filesystem::create_directories(dir.Path() / "d.flt");
    EXPECT_EQ(ListFltFiles(dir.Path().string()), (Names{"A.FLT", "b.flt"}));
    EXPECT_TRUE(ListFltFiles(dir.File("missing")).empty());
}

TEST(CanFilterDialogLogic, NewFileNamesStayInTheDirectory) {
    EXPECT_EQ(NewFltFileName(" engine "), "engine.flt");
    EXPECT_EQ(NewFltFileName("engine.FLT"), "engine.FLT");
    EXPECT_EQ(NewFltFileName("a.b"), "a.b.flt");
    EXPECT_EQ(NewFltFileName(""), std::nullopt);
    EXPECT_EQ(NewFltFileName("  "), std::nullopt);
    EXPECT_EQ(NewFltFileName(".flt"), std::nullopt);
    EXPECT_EQ(NewFltFileName(".."), std::nullopt);
    EXPECT_EQ(NewFltFileName("../x"), std::nullopt);
    EXPECT_EQ(NewFltFileName("a\\b"), std::nullopt);
}

TEST(CanFilterDialogLogic, EditorListTakesEachIdentifierOnceUpToTheTableSize) {
    std::vector<std::uint32_t> ids;
    EXPECT_TRUE(AddFilterIdentifier(ids, 0x7DF));
    EXPECT_FALSE(AddFilterIdentifier(ids, 0x7DF));
    EXPECT_TRUE(AddFilterIdentifier(ids, 0x7DF | FltExtendedFlag));
    for (std::uint32_t id = 0; ids.size() < FltMaxEntries; ++id)
        ASSERT_TRUE(AddFilterIdentifier(ids, id));
    EXPECT_FALSE(AddFilterIdentifier(ids, 0x700));
}

} // namespace
