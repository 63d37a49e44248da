#include "export/movie/MovieFiles.h"

#include "library/media/Filer.h"

namespace movie_files {

std::string temporaryPath(const std::string& fileName) { return Filer::pathToTemporaryDocument(fileName); }

}  // namespace movie_files
