#include "classic/CanFilterDialogLogic.h"

#include "classic/FltFile.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Case-blind order, as people expect a file list; exact order breaks ties.
bool ListOrder(const std::string& a, const std::string& b) {
    const std::string la = Lower(a);
    const std::string lb = Lower(b);
    return la != lb ? la < lb : a < b;
}

bool HasFltExtension(const std::string& name) {
    return name.size() > 4 && Lower(name.substr(name.size() - 4)) == ".flt";
}

std::string Trim(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos)
        return {};
    const std::size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

} // namespace

void BeginCanFilterRun(CanFilterDialogState& state, bool activate, const std::string& name, bool automatic) {
    state.activate = activate;
    state.filterName = name;
    state.automatic = automatic;
    state.changed = false;
    state.names.clear();
    state.selection = -1;
}

std::vector<std::string> ListFltFiles(const std::string& directory) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        std::error_code typeError;
        if (HasFltExtension(name) && !it->is_directory(typeError))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end(), ListOrder);
    return names;
}

void RefillCanFilterList(CanFilterDialogState& state, std::vector<std::string> found) {
    state.names = std::move(found);
    if (state.names.empty()) {
        state.selection = -1;
        return;
    }
    const auto listed = std::find(state.names.begin(), state.names.end(), state.filterName);
    state.selection = listed != state.names.end() ? static_cast<int>(listed - state.names.begin()) : 0;
    state.automatic = false;
}

bool CanFilterEntryButtonsEnabled(const CanFilterDialogState& state) {
    return !state.names.empty();
}

const std::string* SelectedCanFilter(const CanFilterDialogState& state) {
    if (state.selection < 0 || state.selection >= static_cast<int>(state.names.size()))
        return nullptr;
    return &state.names[static_cast<std::size_t>(state.selection)];
}

void ToggleCanFilterActivate(CanFilterDialogState& state) {
    state.activate = !state.activate;
    state.changed = state.activate;
    if (!state.activate)
        state.filterName.clear();
}

CanFilterAddStep DecideCanFilterAdd(const std::string& source, const std::string& target) {
    std::error_code error;
    const bool sameFile = fs::equivalent(source, target, error);
    if (sameFile || fs::path(source).lexically_normal() == fs::path(target).lexically_normal())
        return CanFilterAddStep::SameFile;
    if (fs::exists(target, error))
        return CanFilterAddStep::AskOverwrite;
    return CanFilterAddStep::Copy;
}

bool EnsureFilterDirectory(const std::string& directory) {
    std::error_code error;
    fs::path path = fs::path(directory).lexically_normal();
    if (!path.has_filename())
        path = path.parent_path();
    if (fs::is_directory(path, error))
        return true;
    const fs::path parent = path.parent_path();
    if (parent.empty() || parent == path.root_path() || !fs::is_directory(parent, error))
        return false;
    return fs::create_directory(path, error) && !error;
}

bool RemoveFilterFile(const std::string& path) {
    std::error_code error;
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, error);
    fs::remove(path, error);
    return !fs::exists(fs::symlink_status(path, error));
}

bool CopyFilterFile(const std::string& source, const std::string& target) {
    std::error_code error;
    return fs::copy_file(source, target, fs::copy_options::none, error) && !error;
}

void AddCanFilterToList(CanFilterDialogState& state, const std::string& name) {
    if (std::find(state.names.begin(), state.names.end(), name) != state.names.end())
        return;
    const auto at = std::lower_bound(state.names.begin(), state.names.end(), name, ListOrder);
    const auto inserted = state.names.insert(at, name);
    state.selection = static_cast<int>(inserted - state.names.begin());
}

std::string CanFilterDeleteQuestion(const std::string& fullPath) {
    return "Do you really want to delete\n" + fullPath + " ?";
}

void RemoveSelectedCanFilter(CanFilterDialogState& state) {
    if (SelectedCanFilter(state) == nullptr)
        return;
    const int removed = state.selection;
    state.names.erase(state.names.begin() + removed);
    state.activate = false;
    if (state.names.empty())
        state.selection = -1;
    else
        state.selection = removed > 0 ? removed - 1 : 0;
}

void AfterCanFilterEdit(CanFilterDialogState& state, std::vector<std::string> found, const std::string& name) {
    state.filterName = name;
    RefillCanFilterList(state, std::move(found));
    state.changed = true;
}

void AcceptCanFilter(CanFilterDialogState& state) {
    const std::string* selected = SelectedCanFilter(state);
    if (selected == nullptr) {
        state.activate = false;
        state.changed = true;
    } else {
        state.filterName = *selected;
        if (state.activate && state.filterName != state.previousName)
            state.changed = true;
    }
    // Only an active filter counts as applied: after turning it off, choosing the same
    // file again must apply it anew.
    state.previousName = state.activate ? state.filterName : std::string();
}

std::optional<std::string> NewFltFileName(const std::string& typed) {
    std::string name = Trim(typed);
    if (name.empty() || name == "." || name == ".." || name.find_first_of("/\\") != std::string::npos)
        return std::nullopt;
    if (Lower(name) == ".flt")
        return std::nullopt;
    if (!HasFltExtension(name))
        name += ".flt";
    return name;
}

bool AddFilterIdentifier(std::vector<std::uint32_t>& identifiers, std::uint32_t identifier) {
    if (identifiers.size() >= FltMaxEntries ||
        std::find(identifiers.begin(), identifiers.end(), identifier) != identifiers.end())
        return false;
    identifiers.push_back(identifier);
    return true;
}
