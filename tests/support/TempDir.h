#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

// A fresh directory under the system's temporary directory, removed with its contents.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zdt-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("mkdtemp failed");
        m_path = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::string File(const std::string& name) const { return (m_path / name).string(); }

    // Writes bytes exactly as given (no line-end translation).
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = File(name);
        std::ofstream out(path, std::ios::binary);
        out << bytes;
        return path;
    }

    static std::string Read(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::filesystem::path m_path;
};

// Joins lines with CR LF, the line end of classic traces.
inline std::string CrLf(std::initializer_list<std::string> lines) {
    std::string text;
    for (const auto& line : lines)
        text += line + "\r\n";
    return text;
}
