#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The decisions of the CAN filter dialog and its editor, over plain values. The dialog
// moves its controls into CanFilterDialogState and back; nothing here touches a window.

inline constexpr const char* kCanFilterSameFileText = "Source and destination have to be different ! ";
inline constexpr const char* kCanFilterOverwriteTitle = "Add CanFilter ";
inline constexpr const char* kCanFilterOverwriteText = "File already exists ! Overwrite ?";
inline constexpr const char* kCanFilterCopyFailedText = "FileCopy failed ! ";
inline constexpr const char* kCanFilterDeleteTitle = "Delete Can Filter";
inline constexpr const char* kCanFilterFileDialogFilter = "Can Filter Files (*.flt)";

struct CanFilterDialogState {
    std::string filterName;         // the chosen file, without directory
    std::string previousName;       // the filter of the last accepted choice
    bool automatic = false;         // the document opened the dialog by itself
    bool activate = false;          // "Activate &Filter"
    bool changed = false;           // a filter is to be applied
    std::vector<std::string> names; // the list, in its shown order
    int selection = -1;
};

// A new run of the dialog for the document's request. `previousName` survives from
// the last run, so that an unchanged choice is not applied again.
void BeginCanFilterRun(CanFilterDialogState& state, bool activate, const std::string& name, bool automatic);

// The ".flt" files in `directory` (the extension in any case), sorted by name; none
// when the directory is missing.
std::vector<std::string> ListFltFiles(const std::string& directory);

// Refills the list with `found`: selects the chosen filter if listed, else the first.
void RefillCanFilterList(CanFilterDialogState& state, std::vector<std::string> found);

// "&Edit..." and "&Remove" need an entry to work on.
bool CanFilterEntryButtonsEnabled(const CanFilterDialogState& state);

const std::string* SelectedCanFilter(const CanFilterDialogState& state);

// The activate check box was clicked.
void ToggleCanFilterActivate(CanFilterDialogState& state);

// What "&Add..." does with the chosen source file.
enum class CanFilterAddStep {
    SameFile,     // refuse: the source is the target
    AskOverwrite, // the target exists: ask before replacing it
    Copy,
};
CanFilterAddStep DecideCanFilterAdd(const std::string& source, const std::string& target);

// Makes the filter directory before the first file goes in: a project's "flt" folder
// need not exist yet. A directory right below the file system root is never made.
// True when the directory exists afterwards.
bool EnsureFilterDirectory(const std::string& directory);

// Replaces an existing target: makes it writable and removes it. False when it stays.
bool RemoveFilterFile(const std::string& path);
bool CopyFilterFile(const std::string& source, const std::string& target);

// After a successful copy: a name new to the list is added in order and selected.
void AddCanFilterToList(CanFilterDialogState& state, const std::string& name);

// The question before deleting `fullPath`.
std::string CanFilterDeleteQuestion(const std::string& fullPath);

// After the selected file was deleted: drops it from the list, clears the activate
// check and selects the previous entry (the head when the first one went).
void RemoveSelectedCanFilter(CanFilterDialogState& state);

// After the editor changed the file `name`: refill, select it again, mark changed.
void AfterCanFilterEdit(CanFilterDialogState& state, std::vector<std::string> found, const std::string& name);

// "&Ok": works out the dialog's result from the selection and the activate check.
void AcceptCanFilter(CanFilterDialogState& state);

// The file name a new filter gets from what the user typed: ".flt" is added when
// missing; nullopt for an empty name or one that leaves the filter directory.
std::optional<std::string> NewFltFileName(const std::string& typed);

// Adds `identifier` to the editor's list unless it is there already or the list is full.
bool AddFilterIdentifier(std::vector<std::uint32_t>& identifiers, std::uint32_t identifier);
