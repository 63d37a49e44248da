#pragma once
// A benchmark's scratch folder under the system's temporary folder, removed
// when the program ends.
#include <stdlib.h>

#include <filesystem>
#include <string>

struct BenchFolder {
    std::string path;
    explicit BenchFolder(const std::string& prefix = "quillo-bench") {
        std::string tmpl = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
        path = mkdtemp(tmpl.data());
    }
    ~BenchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
};
