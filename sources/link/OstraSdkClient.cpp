#include "OstraSdkClient.h"

#include "Exception.h"
#include "bFile.h"
#include "bStatus.h"

#include <fstream>

void OstraSdkClient::ReadFileBuffer(const std::string& fileName, std::vector<std::uint8_t>& buffer) {
    constexpr const char* kFunction = "ReadFileBuffer";
    std::ifstream file;
    if (bFile_Exists(fileName.c_str()) != 0)
        file.open(fileName, std::ios::binary);
    if (!file.is_open())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction, "Failed to open %s.",
                            fileName.c_str());
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (size == 0)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction, "%s is empty.", fileName.c_str());
    file.seekg(0);
    buffer.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    file.read(reinterpret_cast<char*>(buffer.data()), size);
    const bool whole = file.good() && file.peek() == std::ifstream::traits_type::eof();
    if (!whole)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction, "Failed to open %s.",
                            fileName.c_str());
}
