// The GAEB DA XML import at size: the export benchmark's LV of 10 000 items with long
// texts written as an X83 file, then imported into memory (read, tree, LV with texts as
// RTF), against libxml2 alone parsing the same file and walking every node and text.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <unistd.h>
#include <filesystem>
#include <string>

#include "exchange/gaeb_export/gaeb_export.h"
#include "exchange/gaeb_import/gaeb_import.h"
#include "gaeb_bench_lv.h"

namespace korvan::exchange {
namespace {

// The file, written once for all runs and removed at exit.
class BenchFile {
 public:
  BenchFile()
      : path_((std::filesystem::temp_directory_path() /
               ("korvan-gaeb-import-bench-" + std::to_string(getpid()) + ".X83"))
                  .string()) {
    TGaebExportOptions options;
    options.phase = kPhaseInvitation;
    ExportGaebFile(bench::BigLv(), options, path_);
  }
  ~BenchFile() { std::filesystem::remove(path_); }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

const BenchFile& TheFile() {
  static const BenchFile file;
  return file;
}

// What a reader needs at least: every element's name and every text's content.
size_t Walk(const xmlNode* node) {
  size_t seen = 0;
  for (; node != nullptr; node = node->next) {
    if (node->type == XML_ELEMENT_NODE) {
      seen += xmlStrlen(node->name);
      seen += Walk(node->children);
    } else if (node->type == XML_TEXT_NODE && node->content != nullptr) {
      seen += static_cast<size_t>(xmlStrlen(node->content));
    }
  }
  return seen;
}

void BM_LibXml2ParseAndWalk(benchmark::State& state) {
  const std::string& path = TheFile().Path();
  for (auto _ : state) {
    xmlDoc* doc = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET);
    benchmark::DoNotOptimize(Walk(xmlDocGetRootElement(doc)));
    xmlFreeDoc(doc);
  }
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}
BENCHMARK(BM_LibXml2ParseAndWalk)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ImportX83(benchmark::State& state) {
  const std::string& path = TheFile().Path();
  int entries = 0;
  for (auto _ : state) {
    const TGaebImport import = ImportGaebFile(path, {});
    entries = import.lv.Count();
    benchmark::DoNotOptimize(entries);
  }
  state.counters["entries"] = entries;
}
BENCHMARK(BM_ImportX83)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace korvan::exchange
