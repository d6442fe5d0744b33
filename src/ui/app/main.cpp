// zdt-analyzer: the desktop application. (Start-up is being written; this stub keeps the build whole.)
#include <cstdio>

int main() {
    std::fprintf(stderr, "zdt-analyzer is not built yet\n");
    return 1;
}
