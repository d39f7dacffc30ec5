#include "simulators/make_service/Digest.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include <openssl/evp.h>

#include "platform/Exception.h"
#include "simulators/support/Files.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {

using platform::Exception;

namespace {

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { ::EVP_MD_CTX_free(context); }
};

void require(bool done) {
  if (!done) throw Exception("SHA-256 cannot be computed");
}

// SHA-256 over what is added, file by file.
class Sum {
 public:
  Sum() { require(context_ && ::EVP_DigestInit_ex(context_.get(), ::EVP_sha256(), nullptr) == 1); }

  void add(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Exception("open " + path + ": " + std::strerror(errno));
    std::array<char, 65536> block;
    while (file) {
      file.read(block.data(), block.size());
      const std::streamsize got = file.gcount();
      size_ += got;
      require(::EVP_DigestUpdate(context_.get(), block.data(), static_cast<std::size_t>(got)) == 1);
    }
    if (file.bad()) throw Exception("read " + path + ": " + std::strerror(errno));
  }

  Digest digest() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes;
    unsigned length = 0;
    require(::EVP_DigestFinal_ex(context_.get(), bytes.data(), &length) == 1);
    return {size_, hexOfBytes(std::string(bytes.begin(), bytes.begin() + length))};
  }

 private:
  std::unique_ptr<EVP_MD_CTX, FreeContext> context_{::EVP_MD_CTX_new()};
  std::int64_t size_ = 0;
};

}  // namespace

Digest digestOf(const std::map<std::string, std::string>& paths) {
  Sum sum;
  for (const auto& [name, path] : paths) {
    for (const std::string& file : filesBelow(path)) sum.add(file);
  }
  return sum.digest();
}

}  // namespace kelvane::simulator
