// Runs a fuzz target over files, where libFuzzer is not to be had: the corpus in the ordinary tests, or a reproducer.
//
//   <Name>Replay FILE-OR-FOLDER...
//
// Fails when the target dies, naming the input it died of, and when there was nothing to run. An input that was
// generated is written to a file then, so that it can be replayed and kept.

#include <fuzz/Fuzzer.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

// Absent from a target that is content with its corpus.
extern "C" __attribute__((weak)) std::size_t const fuzzGeneratedInputs;
// Absent without a sanitizer.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

namespace fs = std::filesystem;
using Input = std::vector<std::uint8_t>;

constexpr std::size_t maxGeneratedSize = 4096;

/// What the target is run with now, for the report of its death.
struct Current {
  char name[512] = "";
  Input const* generated = nullptr;  ///< not in a file yet
  std::string reproducer;            ///< where it is written to then
} current;

void say(char const* text) {
  if (write(STDERR_FILENO, text, std::strlen(text)) < 0) return;
}

/// Async-signal-safe.
void reportDeath() {
  if (current.name[0] == '\0') return;
  say("replay: died of ");
  say(current.name);
  say("\n");
  if (!current.generated) return;
  int const file = open(current.reproducer.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0) return;
  if (write(file, current.generated->data(), current.generated->size()) >= 0) {
    say("replay: it stands in ");
    say(current.reproducer.c_str());
    say("\n");
  }
  close(file);
  current.name[0] = '\0';
}

extern "C" void onDeadlySignal(int number) {
  reportDeath();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void reportDeaths() {
  if (__sanitizer_set_death_callback) {
    __sanitizer_set_death_callback(reportDeath);
    std::signal(SIGABRT, onDeadlySignal);  // the others are the sanitizer's
    return;
  }
  for (int const number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(number, onDeadlySignal);
}

void run(std::string const& name, Input const& input, bool isGenerated) {
  name.copy(current.name, sizeof current.name - 1);
  current.name[std::min(name.size(), sizeof current.name - 1)] = '\0';
  current.generated = isGenerated ? &input : nullptr;
  // Exactly as large as the input, so that a sanitizer sees one octet too far.
  std::uint8_t const* const data = input.data();
  LLVMFuzzerTestOneInput(data, input.size());
  current.name[0] = '\0';
}

std::vector<fs::path> filesOf(std::vector<std::string> const& arguments) {
  std::vector<fs::path> files;
  for (fs::path const path : arguments)
    if (fs::is_directory(path))
      std::copy_if(fs::recursive_directory_iterator(path), {}, std::back_inserter(files),
                   [](fs::path const& entry) { return fs::is_regular_file(entry); });
    else
      files.push_back(path);
  std::sort(files.begin(), files.end());
  return files;
}

Input contentOf(fs::path const& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return Input(std::istreambuf_iterator<char>(file), {});
}

/// The same inputs in every run, from the numbers of one fixed generator.
class Generator {
 public:
  explicit Generator(std::vector<Input> const& seeds) : seeds_(seeds) {}

  Input next() {
    if (seeds_.empty() || below(4) == 0) return randomOctets();
    Input input = seeds_[below(seeds_.size())];
    for (std::size_t changes = 1 + below(8); changes > 0; --changes) change(input);
    return input;
  }

 private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  std::uint8_t octet() { return static_cast<std::uint8_t>(random_()); }

  Input randomOctets() {
    Input input(below(2) ? below(64) : below(maxGeneratedSize));
    std::generate(input.begin(), input.end(), [this] { return octet(); });
    return input;
  }

  void change(Input& input) {
    if (input.empty()) return input.push_back(octet());
    std::size_t const place = below(input.size());
    auto const at = input.begin() + static_cast<std::ptrdiff_t>(place);
    switch (below(6)) {
      case 0:
        *at = octet();
        break;
      case 1:
        *at = static_cast<std::uint8_t>(*at ^ (1U << below(8)));
        break;
      case 2:
        *at = below(2) ? 0 : 0xff;
        break;
      case 3:
        input.erase(at, input.end());
        break;
      case 4:
        input.insert(at, octet());
        break;
      default:
        append(input, seeds_[below(seeds_.size())]);
        break;
    }
  }

  static void append(Input& input, Input const& tail) {
    std::size_t const room = maxGeneratedSize - std::min(maxGeneratedSize, input.size());
    input.insert(input.end(), tail.begin(), tail.begin() + static_cast<std::ptrdiff_t>(std::min(room, tail.size())));
  }

  std::vector<Input> const& seeds_;
  std::mt19937_64 random_{20080101};
};

}  // namespace

int main(int argc, char** argv) try {
  current.reproducer = fs::absolute(fs::path(argv[0]).filename()).string() + "-reproducer.bin";
  reportDeaths();
  std::vector<Input> seeds;
  for (fs::path const& path : filesOf({argv + 1, argv + argc})) {
    seeds.push_back(contentOf(path));
    seeds.back().shrink_to_fit();
    run(path.string(), seeds.back(), false);
  }

  std::size_t const generated = &fuzzGeneratedInputs ? fuzzGeneratedInputs : 0;
  Generator generator(seeds);
  for (std::size_t i = 0; i < generated; ++i) {
    Input input = generator.next();
    input.shrink_to_fit();
    run("generated input " + std::to_string(i), input, true);
  }

  std::printf("%zu files and %zu generated inputs\n", seeds.size(), generated);
  return seeds.size() + generated > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (std::exception const& error) {
  std::fprintf(stderr, "replay: %s\n", error.what());
  return EXIT_FAILURE;
}
