#include "shell/catalog.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "console/console.h"
#include "files/data_file.h"
#include "platform/break_flag.h"

namespace {

struct Entry {
  std::string name;
  std::string kind;
  uint64_t bytes;
  time_t modified;
};

bool EndsWithBas(std::string_view name) {
  if (name.size() < 5) return false;
  std::string_view end = name.substr(name.size() - 4);
  return end[0] == '.' && (end[1] | 0x20) == 'b' && (end[2] | 0x20) == 'a' &&
         (end[3] | 0x20) == 's';
}

// Text: no NUL and no control character but tab, line ends, form feed and Ctrl-Z.
bool LooksLikeText(std::string_view head) {
  for (char c : head) {
    auto u = static_cast<unsigned char>(c);
    if (u < 32 && u != '\t' && u != '\n' && u != '\r' && u != '\f' && u != 26) return false;
  }
  return true;
}

// A program: named .bas, or a script run by basic, or a first line that starts
// with a statement number.
bool LooksLikeProgram(std::string_view name, std::string_view head) {
  if (EndsWithBas(name)) return true;
  std::string_view first = head.substr(0, head.find('\n'));
  if (first.rfind("#!", 0) == 0) return first.find("basic") != std::string_view::npos;
  size_t digits = 0;
  while (digits < first.size() && first[digits] >= '0' && first[digits] <= '9') ++digits;
  return digits > 0 && digits <= 6 && digits < first.size() && first[digits] == ' ';
}

// The kind of a regular file, or "" for one that is none of the three.
std::string KindOf(const std::string& path, std::string_view name) {
  int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (fd < 0) return "";
  uint32_t words = 0, records = 0;
  OpenStatus status = ReadDataHeader(fd, &words, &records);
  std::string kind;
  if (status == OpenStatus::kReadWrite) {
    kind =
        "data file, " + std::to_string(records) + " records of " + std::to_string(words) + " words";
  } else if (status == OpenStatus::kDamaged) {
    kind = "data file, damaged";
  } else if (status == OpenStatus::kNotData) {
    char buffer[4096];
    ssize_t n = pread(fd, buffer, sizeof buffer, 0);
    std::string_view head(buffer, n > 0 ? static_cast<size_t>(n) : 0);
    if (LooksLikeText(head)) kind = LooksLikeProgram(name, head) ? "program" : "text file";
  }
  close(fd);
  return kind;
}

bool ByName(const Entry& a, const Entry& b) {
  auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  bool less =
      std::lexicographical_compare(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                   [&](char x, char y) { return lower(x) < lower(y); });
  bool greater =
      std::lexicographical_compare(b.name.begin(), b.name.end(), a.name.begin(), a.name.end(),
                                   [&](char x, char y) { return lower(x) < lower(y); });
  return less || (!greater && a.name < b.name);
}

// On a terminal, waits after each screenful: Enter goes on, anything else stops.
bool More(Console& con) {
  con.Write("--More--");
  char line[Console::kLineMax + 1];
  int n = con.EditLine(line, "");
  if (n == Console::kBreakRead) {
    SetRunError(0);
    con.Write("\n");
  }
  return n == 0;
}

}  // namespace

std::string CatalogFolder(const std::string& which) {
  const char* variable = which == "$" ? "BASIC_LIB" : which == "*" ? "BASIC_GROUP" : nullptr;
  const char* folder = variable ? std::getenv(variable) : nullptr;
  return folder && *folder ? folder : ".";
}

void Catalog(Console& con, const std::string& folder) {
  std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(folder.c_str()), closedir);
  if (!dir) {
    con.Printf("Unable to open %s.\n", folder.c_str());
    return;
  }
  std::vector<Entry> entries;
  while (const dirent* d = readdir(dir.get())) {
    if (d->d_name[0] == '.') continue;
    std::string path = folder + '/' + d->d_name;
    struct stat st;
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) continue;
    std::string kind = KindOf(path, d->d_name);
    if (kind.empty()) continue;
    entries.push_back({d->d_name, std::move(kind), static_cast<uint64_t>(st.st_size), st.st_mtime});
  }
  if (entries.empty()) {
    con.Write("No files.\n");
    return;
  }
  std::sort(entries.begin(), entries.end(), ByName);
  size_t nameWidth = 4, kindWidth = 4, bytesWidth = 5;
  for (const Entry& e : entries) {
    nameWidth = std::max(nameWidth, e.name.size());
    kindWidth = std::max(kindWidth, e.kind.size());
    bytesWidth = std::max(bytesWidth, std::to_string(e.bytes).size());
  }
  auto width = [](size_t w) { return static_cast<int>(w); };
  con.Printf("%-*s  %-*s  %*s  %s\n", width(nameWidth), "Name", width(kindWidth), "Kind",
             width(bytesWidth), "Bytes", "Date");
  int page = con.Rows() - 2, shown = 1;
  TestAndClearBreak();
  for (const Entry& e : entries) {
    if (TestAndClearBreak()) {
      con.Write("\nBREAK\n");
      return;
    }
    if (con.ReadsKeys() && page > 1 && shown >= page) {
      if (!More(con)) return;
      shown = 0;
    }
    char date[32] = "";
    struct tm local;
    if (localtime_r(&e.modified, &local)) strftime(date, sizeof date, "%Y-%m-%d %H:%M", &local);
    con.Printf("%-*s  %-*s  %*llu  %s\n", width(nameWidth), e.name.c_str(), width(kindWidth),
               e.kind.c_str(), width(bytesWidth), static_cast<unsigned long long>(e.bytes), date);
    ++shown;
  }
}
