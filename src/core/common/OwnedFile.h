#pragma once

#include <cstdio>
#include <memory>

namespace zdt {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// A C stream closed when it goes; release() it to see fclose's answer where a write must
// be known to have reached the file.
using OwnedFile = std::unique_ptr<std::FILE, FileCloser>;

} // namespace zdt
