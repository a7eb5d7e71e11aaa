// make_sample_binaries STUDIO: writes the binary files of the sample studio below STUDIO/drive_c.
//
// Binaries are not committed: they would be opaque in a review and heavy in a clone. This program
// makes them, from nothing and always the same: small program files (PE32, with version
// information, as Windows would load them), pictures, databases, and recipe archives that do not
// compress. The random numbers have fixed seeds and every file gets a fixed date, so that two
// installations built from two copies of the studio are the same byte for byte.

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

// SplitMix64: short, and the same on every machine (the standard library's distributions are not).
class Random {
 public:
  explicit Random(std::string_view seed_text) {
    for (const char c : seed_text) {
      state_ = (state_ ^ static_cast<std::uint8_t>(c)) * 0x100000001B3ULL;
    }
  }

  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }

  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(Next() % limit); }

 private:
  std::uint64_t state_ = 0xCBF29CE484222325ULL;
};

// --- Little-endian writing

void Append(Bytes& bytes, std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

void Append16(Bytes& bytes, std::uint32_t value) { Append(bytes, value, 2); }
void Append32(Bytes& bytes, std::uint32_t value) { Append(bytes, value, 4); }

void AppendText(Bytes& bytes, std::string_view text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

void AppendBytes(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

void Patch16(Bytes& bytes, std::size_t offset, std::size_t value) {
  bytes.at(offset) = static_cast<std::uint8_t>(value);
  bytes.at(offset + 1) = static_cast<std::uint8_t>(value >> 8);
}

void PadTo(Bytes& bytes, std::size_t multiple) {
  while (bytes.size() % multiple != 0) {
    bytes.push_back(0);
  }
}

// UTF-16 with a closing zero. The texts here are ASCII and Latin letters of two UTF-8 bytes.
void AppendWide(Bytes& bytes, std::string_view utf8) {
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<std::uint8_t>(utf8[i]);
    if (lead < 0x80) {
      Append16(bytes, lead);
    } else {
      const auto tail = static_cast<std::uint8_t>(utf8.at(++i));
      Append16(bytes, ((lead & 0x1FU) << 6) | (tail & 0x3FU));
    }
  }
  Append16(bytes, 0);
}

// --- Program files

struct Version {
  std::uint16_t major = 0;
  std::uint16_t minor = 0;
  std::uint16_t build = 0;
  std::uint16_t revision = 0;

  [[nodiscard]] std::string Text() const {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(build) + "." +
           std::to_string(revision);
  }
};

enum class ImageKind { kProgram, kLibrary };

// A block of version information: length, value length, kind, key, value, children. Its length is
// known when it ends, so it is patched then.
class VersionBlock {
 public:
  VersionBlock(Bytes& bytes, std::string_view key, std::size_t value_length, bool is_text)
      : bytes_(bytes) {
    PadTo(bytes_, 4);
    start_ = bytes_.size();
    Append16(bytes_, 0);
    Append16(bytes_, static_cast<std::uint32_t>(value_length));
    Append16(bytes_, is_text ? 1 : 0);
    AppendWide(bytes_, key);
    PadTo(bytes_, 4);
  }
  VersionBlock(const VersionBlock&) = delete;
  VersionBlock& operator=(const VersionBlock&) = delete;

  void End() { Patch16(bytes_, start_, bytes_.size() - start_); }

 private:
  Bytes& bytes_;
  std::size_t start_ = 0;
};

void AppendVersionText(Bytes& bytes, std::string_view key, std::string_view value) {
  Bytes wide;
  AppendWide(wide, value);
  VersionBlock block(bytes, key, wide.size() / 2, /*is_text=*/true);
  AppendBytes(bytes, wide);
  block.End();
}

Bytes VersionInformation(std::string_view file_name, std::string_view company,
                         std::string_view description, const Version& version, ImageKind kind) {
  constexpr std::uint32_t kFixedInfoSize = 52;
  Bytes bytes;
  VersionBlock root(bytes, "VS_VERSION_INFO", kFixedInfoSize, /*is_text=*/false);
  const std::uint32_t high = (std::uint32_t{version.major} << 16) | version.minor;
  const std::uint32_t low = (std::uint32_t{version.build} << 16) | version.revision;
  Append32(bytes, 0xFEEF04BD);  // signature
  Append32(bytes, 0x00010000);  // version of the structure
  Append32(bytes, high);        // file version
  Append32(bytes, low);
  Append32(bytes, high);  // product version
  Append32(bytes, low);
  Append32(bytes, 0x3F);                                   // flags mask
  Append32(bytes, 0);                                      // flags
  Append32(bytes, 0x00040004);                             // for 32-bit Windows
  Append32(bytes, kind == ImageKind::kProgram ? 1U : 2U);  // program or library
  Append32(bytes, 0);                                      // no subtype
  Append32(bytes, 0);                                      // no date
  Append32(bytes, 0);
  {
    VersionBlock strings(bytes, "StringFileInfo", 0, /*is_text=*/true);
    VersionBlock german(bytes, "040704B0", 0, /*is_text=*/true);
    AppendVersionText(bytes, "CompanyName", company);
    AppendVersionText(bytes, "FileDescription", description);
    AppendVersionText(bytes, "FileVersion", version.Text());
    AppendVersionText(bytes, "OriginalFilename", file_name);
    AppendVersionText(bytes, "ProductVersion", version.Text());
    german.End();
    strings.End();
  }
  {
    VersionBlock variables(bytes, "VarFileInfo", 0, /*is_text=*/true);
    VersionBlock translation(bytes, "Translation", 4, /*is_text=*/false);
    Append16(bytes, 0x0407);  // German
    Append16(bytes, 0x04B0);  // Unicode
    translation.End();
    variables.End();
  }
  root.End();
  return bytes;
}

// The resource section that holds one version resource: three levels of directories (type, name,
// language), then the data. `address` is where the section stands in memory.
Bytes ResourceSection(const Bytes& version_information, std::uint32_t address) {
  constexpr std::uint32_t kDirectorySize = 16 + 8;  // with its one entry
  constexpr std::uint32_t kDataEntry = 3 * kDirectorySize;
  constexpr std::uint32_t kData = kDataEntry + 16;
  constexpr std::uint32_t kSubdirectory = 0x80000000;
  const std::array<std::array<std::uint32_t, 2>, 3> levels = {{
      {16, kSubdirectory | kDirectorySize},       // type: version
      {1, kSubdirectory | (2 * kDirectorySize)},  // name: 1
      {0x0407, kDataEntry},                       // language: German
  }};
  Bytes bytes;
  for (const auto& [id, offset] : levels) {
    Append32(bytes, 0);  // characteristics
    Append32(bytes, 0);  // time
    Append32(bytes, 0);  // version
    Append16(bytes, 0);  // named entries
    Append16(bytes, 1);  // entries with an id
    Append32(bytes, id);
    Append32(bytes, offset);
  }
  Append32(bytes, address + kData);
  Append32(bytes, static_cast<std::uint32_t>(version_information.size()));
  Append32(bytes, 0);
  Append32(bytes, 0);
  AppendBytes(bytes, version_information);
  return bytes;
}

// What fills a program file: an entry point that returns at once, then instructions that compress
// about as well as compiled code does.
Bytes CodeSection(std::string_view seed, ImageKind kind, std::size_t size) {
  Bytes bytes;
  if (kind == ImageKind::kProgram) {
    AppendBytes(bytes, {0x31, 0xC0, 0xC3});  // xor eax, eax; ret
  } else {
    AppendBytes(bytes, {0xB8, 1, 0, 0, 0, 0xC2, 0x0C, 0});  // mov eax, 1; ret 12
  }
  static const std::vector<Bytes> kInstructions = {
      {0x55, 0x8B, 0xEC}, {0x5D, 0xC3},
      {0x8B, 0x45},       {0x89, 0x45},
      {0x50, 0xE8},       {0x83, 0xC4, 0x04},
      {0x85, 0xC0, 0x74}, {0x8D, 0x4D},
      {0xFF, 0x15},       {0x33, 0xC0},
      {0xC7, 0x45},       {0x6A, 0x00, 0x68},
      {0x0F, 0xB7},       {0xEB},
      {0x3B, 0xC1, 0x7C}, {0x90, 0x90, 0x90, 0x90},
  };
  Random random(seed);
  while (bytes.size() < size) {
    AppendBytes(bytes,
                kInstructions[random.Below(static_cast<std::uint32_t>(kInstructions.size()))]);
    Append(bytes, random.Next(), static_cast<int>(random.Below(3)));
  }
  bytes.resize(size);
  return bytes;
}

// A 32-bit Windows image with two sections, code and version resource.
Bytes ProgramFile(std::string_view file_name, std::string_view company,
                  std::string_view description, const Version& version, ImageKind kind,
                  std::size_t size) {
  constexpr std::uint32_t kPage = 0x1000;
  constexpr std::uint32_t kSector = 0x200;
  const auto up = [](std::uint32_t value, std::uint32_t multiple) {
    return (value + multiple - 1) / multiple * multiple;
  };

  Bytes code = CodeSection(file_name, kind, size);
  const auto code_size = static_cast<std::uint32_t>(code.size());
  const std::uint32_t resource_address = kPage + up(code_size, kPage);
  Bytes resource = ResourceSection(
      VersionInformation(file_name, company, description, version, kind), resource_address);
  const auto resource_size = static_cast<std::uint32_t>(resource.size());
  PadTo(code, kSector);
  PadTo(resource, kSector);
  const auto code_raw = static_cast<std::uint32_t>(code.size());
  const auto resource_raw = static_cast<std::uint32_t>(resource.size());

  Bytes bytes;
  AppendText(bytes, "MZ");
  bytes.resize(0x3C);
  Append32(bytes, 0x40);  // where the PE header stands
  AppendText(bytes, std::string_view("PE\0\0", 4));
  Append16(bytes, 0x014C);      // 32-bit x86
  Append16(bytes, 2);           // sections
  Append32(bytes, 0x3F9E6C80);  // a day in October 2003
  Append32(bytes, 0);           // no symbols
  Append32(bytes, 0);
  Append16(bytes, 0xE0);  // size of the optional header
  Append16(bytes, kind == ImageKind::kProgram ? 0x0103U : 0x2103U);

  Append16(bytes, 0x010B);  // PE32
  Append16(bytes, 6);       // linker version
  Append32(bytes, code_raw);
  Append32(bytes, resource_raw);
  Append32(bytes, 0);
  Append32(bytes, kPage);  // entry point
  Append32(bytes, kPage);  // base of code
  Append32(bytes, resource_address);
  Append32(bytes, kind == ImageKind::kProgram ? 0x00400000U : 0x10000000U);  // image base
  Append32(bytes, kPage);
  Append32(bytes, kSector);
  Append16(bytes, 4);  // operating system version 4.0
  Append16(bytes, 0);
  Append32(bytes, 0);  // image version
  Append16(bytes, 4);  // subsystem version 4.0
  Append16(bytes, 0);
  Append32(bytes, 0);
  Append32(bytes, resource_address + up(resource_size, kPage));  // size in memory
  Append32(bytes, kSector);                                      // size of the headers
  Append32(bytes, 0);                                            // checksum: not asked for
  Append16(bytes, 2);                                            // graphical
  Append16(bytes, 0);
  Append32(bytes, 0x100000);  // stack and heap: reserved, committed
  Append32(bytes, 0x1000);
  Append32(bytes, 0x100000);
  Append32(bytes, 0x1000);
  Append32(bytes, 0);
  Append32(bytes, 16);  // data directories, of which only the resources exist
  for (int directory = 0; directory < 16; ++directory) {
    Append32(bytes, directory == 2 ? resource_address : 0);
    Append32(bytes, directory == 2 ? resource_size : 0);
  }

  const auto append_section = [&bytes](std::string_view name, std::uint32_t memory_size,
                                       std::uint32_t address, std::uint32_t raw_size,
                                       std::uint32_t raw_offset, std::uint32_t flags) {
    AppendText(bytes, name);
    bytes.resize(bytes.size() + 8 - name.size());
    Append32(bytes, memory_size);
    Append32(bytes, address);
    Append32(bytes, raw_size);
    Append32(bytes, raw_offset);
    Append32(bytes, 0);
    Append32(bytes, 0);
    Append32(bytes, 0);
    Append32(bytes, flags);
  };
  append_section(".text", code_size, kPage, code_raw, kSector, 0x60000020);
  append_section(".rsrc", resource_size, resource_address, resource_raw, kSector + code_raw,
                 0x40000040);
  PadTo(bytes, kSector);
  AppendBytes(bytes, code);
  AppendBytes(bytes, resource);
  return bytes;
}

// --- Pictures

// A process picture: a tank with its contents before a shaded wall, 256 colours.
Bytes Picture(std::uint32_t width, std::uint32_t height, std::uint32_t level_percent) {
  const std::uint32_t row_size = (width + 3) / 4 * 4;
  const std::uint32_t offset = 14 + 40 + 256 * 4;
  Bytes bytes;
  AppendText(bytes, "BM");
  Append32(bytes, offset + row_size * height);
  Append32(bytes, 0);
  Append32(bytes, offset);
  Append32(bytes, 40);
  Append32(bytes, width);
  Append32(bytes, height);
  Append16(bytes, 1);
  Append16(bytes, 8);
  Append32(bytes, 0);
  Append32(bytes, row_size * height);
  Append32(bytes, 2835);  // 72 dots per inch
  Append32(bytes, 2835);
  Append32(bytes, 0);
  Append32(bytes, 0);
  for (std::uint32_t colour = 0; colour < 256; ++colour) {
    const bool is_liquid = colour >= 128;
    const std::uint32_t shade = (colour % 128) + 96;
    bytes.push_back(static_cast<std::uint8_t>(is_liquid ? 255 - (colour % 128) / 2 : shade));
    bytes.push_back(static_cast<std::uint8_t>(shade));
    bytes.push_back(static_cast<std::uint8_t>(is_liquid ? colour % 128 : shade));
    bytes.push_back(0);
  }
  const std::uint32_t level = height * level_percent / 100;
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < row_size; ++x) {
      const bool in_tank = x > width / 3 && x < 2 * width / 3 && y > height / 10;
      const std::uint32_t shade = (x * 64 / width) + (y * 63 / height);
      bytes.push_back(static_cast<std::uint8_t>(in_tank && y < level ? 128 + shade : shade));
    }
  }
  return bytes;
}

// An icon of 16 x 16 points: a dark square with a bright bar.
Bytes Icon() {
  Bytes bytes;
  Append16(bytes, 0);
  Append16(bytes, 1);
  Append16(bytes, 1);
  AppendBytes(bytes, {16, 16, 0, 0});
  Append16(bytes, 1);
  Append16(bytes, 32);
  Append32(bytes, 40 + 16 * 16 * 4 + 16 * 4);
  Append32(bytes, 22);
  Append32(bytes, 40);
  Append32(bytes, 16);
  Append32(bytes, 32);
  Append16(bytes, 1);
  Append16(bytes, 32);
  bytes.resize(bytes.size() + 24);
  for (std::uint32_t y = 0; y < 16; ++y) {
    for (std::uint32_t x = 0; x < 16; ++x) {
      Append32(bytes, x > 5 && x < 10 && y > 2 && y < 13 ? 0xFFF0C040 : 0xFF303848);
    }
  }
  bytes.resize(bytes.size() + 64);
  return bytes;
}

// --- Data

// A database as far as its size and its first page go: enough to be packed, not to be opened.
Bytes Database(std::string_view seed, std::uint32_t records) {
  constexpr std::size_t kPage = 2048;
  Random random(seed);
  Bytes bytes = {0, 1, 0, 0};
  AppendText(bytes, std::string_view("Standard Jet DB\0", 16));
  PadTo(bytes, kPage);
  for (std::uint32_t record = 0; record < records; ++record) {
    char text[96];
    const int length =
        std::snprintf(text, sizeof text, "Rezept %05u;Kies=%u;Sand=%u;Zement=%u;", record,
                      600 + random.Below(400), 300 + random.Below(300), 200 + random.Below(150));
    AppendText(bytes, std::string_view(text, static_cast<std::size_t>(length)));
  }
  PadTo(bytes, kPage);
  return bytes;
}

// A dBASE III table of measuring points, complete and readable.
Bytes Table(std::uint32_t records) {
  constexpr std::uint32_t kRecordSize = 1 + 12 + 8;
  Bytes bytes = {3, 104, 3, 15};  // last change on 15 March 2004
  Append32(bytes, records);
  Append16(bytes, 32 + 2 * 32 + 1);
  Append16(bytes, kRecordSize);
  bytes.resize(32);
  const auto append_field = [&bytes](std::string_view name, char type, std::uint8_t width) {
    const std::size_t start = bytes.size();
    AppendText(bytes, name);
    bytes.resize(start + 11);
    bytes.push_back(static_cast<std::uint8_t>(type));
    bytes.resize(start + 16);
    bytes.push_back(width);
    bytes.resize(start + 32);
  };
  append_field("MESSPUNKT", 'C', 12);
  append_field("GRENZE", 'N', 8);
  bytes.push_back(0x0D);
  Random random("Messpunkte");
  for (std::uint32_t record = 0; record < records; ++record) {
    char text[kRecordSize + 1];
    std::snprintf(text, sizeof text, " MP%-10u%8u", record % 10000, random.Below(100000));
    AppendText(bytes, std::string_view(text, kRecordSize));
  }
  bytes.push_back(0x1A);
  return bytes;
}

// Recipes as the plant packs them: nothing that a second compression could still save.
Bytes Incompressible(std::string_view seed, std::size_t size) {
  Random random(seed);
  Bytes bytes;
  bytes.reserve(size + 8);
  AppendText(bytes, "RZP1");
  while (bytes.size() < size) {
    Append(bytes, random.Next(), 8);
  }
  bytes.resize(size);
  return bytes;
}

// A type library as far as its signature goes.
Bytes TypeLibrary(std::string_view seed, std::size_t size) {
  Bytes bytes;
  AppendText(bytes, "MSFT");
  AppendBytes(bytes, CodeSection(seed, ImageKind::kLibrary, size));
  return bytes;
}

// --- The studio

struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
};

class Studio {
 public:
  explicit Studio(std::filesystem::path root) : root_(std::move(root)) {}

  // `path` is UTF-8 with "/" below drive_c. The time is noon UTC, which is the same day everywhere
  // that the samples are likely to be built.
  void Put(std::string_view path, const Date& date, const Bytes& bytes) {
    const std::filesystem::path file = root_ / "drive_c" / std::string(path);
    std::filesystem::create_directories(file.parent_path());
    {
      std::ofstream out(file, std::ios::binary | std::ios::trunc);
      for (const std::uint8_t byte : bytes) {
        out.put(static_cast<char>(byte));
      }
      out.close();
      if (!out) {
        throw std::runtime_error("cannot write " + file.string());
      }
    }
    std::tm noon{};
    noon.tm_year = date.year - 1900;
    noon.tm_mon = date.month - 1;
    noon.tm_mday = date.day;
    noon.tm_hour = 12;
    const std::timespec time = {timegm(&noon), 0};
    const std::array<std::timespec, 2> times = {time, time};
    if (utimensat(AT_FDCWD, file.c_str(), times.data(), 0) != 0) {
      throw std::runtime_error("cannot set the time of " + file.string());
    }
    ++count_;
  }

  [[nodiscard]] int Count() const { return count_; }

 private:
  std::filesystem::path root_;
  int count_ = 0;
};

constexpr Date kStudioRelease = {2003, 9, 30};
constexpr Date kWindowsRelease = {2002, 8, 29};

struct Image {
  const char* path;
  const char* description;
  Version version;
  ImageKind kind;
  std::size_t size;
  Date date;
};

void PutImages(Studio& studio, const char* company, const std::vector<Image>& images) {
  for (const Image& image : images) {
    const std::string_view path = image.path;
    studio.Put(path, image.date,
               ProgramFile(path.substr(path.rfind('/') + 1), company, image.description,
                           image.version, image.kind, image.size));
  }
}

void MakeProduct(Studio& studio) {
  using enum ImageKind;
  const Version release = {4, 0, 112, 0};
  PutImages(studio, "ORBEKA GmbH",
            {
                {"TavixStudio/Studio/System/TXEManager.exe", "TavixStudio Manager", release,
                 kProgram, 180'000, kStudioRelease},
                {"TavixStudio/Studio/System/TXEServer.exe", "TavixStudio Server", release, kProgram,
                 240'000, kStudioRelease},
                {"TavixStudio/Studio/Drivers/TXDrvFeldbus.exe",
                 "Treiber Feldbus-Koppler",
                 {4, 0, 31, 0},
                 kProgram,
                 96'000,
                 {2003, 7, 11}},
                {"TavixStudio/Studio/Drivers/TXDrvWaage.exe",
                 "Treiber Waagen (seriell)",
                 {4, 0, 8, 2},
                 kProgram,
                 64'000,
                 {2003, 5, 2}},
                {"TavixStudio/Common/TXData.dll", "Prozessdaten", release, kLibrary, 120'000,
                 kStudioRelease},
                {"TavixStudio/Common/TXLog.dll",
                 "Protokoll",
                 {4, 0, 95, 0},
                 kLibrary,
                 48'000,
                 {2003, 4, 17}},
                {"TavixStudio/Common/TXTrend.ocx", "Kurvendarstellung", release, kLibrary, 160'000,
                 kStudioRelease},
                {"TavixStudio/Common/TXAlarm.ocx", "Meldeanzeige", release, kLibrary, 140'000,
                 kStudioRelease},
                {"TavixStudio/Common/TXLizenz.dll",
                 "Lizenzprüfung",
                 {4, 0, 4, 0},
                 kLibrary,
                 32'000,
                 {2003, 1, 20}},
                {"TavixStudio/SetupKit/SETUP.EXE",
                 "Setup",
                 {4, 0, 17, 0},
                 kProgram,
                 90'000,
                 kStudioRelease},
                {"TavixStudio/SetupKit/TXSETUP.DLL",
                 "Setup: Ablaufsteuerung",
                 {4, 0, 17, 0},
                 kLibrary,
                 150'000,
                 kStudioRelease},
                {"TavixStudio/SetupKit/TXSTPGER.DLL",
                 "Setup: deutsche Texte",
                 {4, 0, 17, 0},
                 kLibrary,
                 24'000,
                 kStudioRelease},
                {"TavixStudio/SetupKit/TXSTPENG.DLL",
                 "Setup: englische Texte",
                 {4, 0, 17, 0},
                 kLibrary,
                 24'000,
                 kStudioRelease},
                {"TavixStudio/SetupKit/TXSRuntimeServerSetup.exe", "Laufzeit-Setup Server", release,
                 kProgram, 420'000, kStudioRelease},
                {"TavixStudio/SetupKit/TXSRuntimeClientSetup.exe", "Laufzeit-Setup Client", release,
                 kProgram, 360'000, kStudioRelease},
            });
  studio.Put("TavixStudio/SetupKit/SETUP.ICO", kStudioRelease, Icon());
}

void MakeWindows(Studio& studio) {
  using enum ImageKind;
  PutImages(studio, "Beispieldatei",
            {
                {"Windows/System32/MSVBVM60.DLL",
                 "Visual-Basic-Laufzeit (Beispiel)",
                 {6, 0, 92, 37},
                 kLibrary,
                 300'000,
                 kWindowsRelease},
                {"Windows/System32/MSCOMCTL.OCX",
                 "Standardsteuerelemente (Beispiel)",
                 {6, 0, 81, 77},
                 kLibrary,
                 200'000,
                 {2000, 5, 22}},
                {"Windows/System32/MSCMCDE.DLL",
                 "Standardsteuerelemente, deutsch (Beispiel)",
                 {6, 0, 81, 63},
                 kLibrary,
                 30'000,
                 {2000, 5, 22}},
                {"Windows/System32/dao360.dll",
                 "Datenbankzugriff (Beispiel)",
                 {3, 60, 61, 0},
                 kLibrary,
                 120'000,
                 kWindowsRelease},
                {"TavixStudio/SetupKit/mdac_typ.exe",
                 "Datenzugriff, vollständig (Beispiel)",
                 {2, 70, 0, 0},
                 kProgram,
                 400'000,
                 kWindowsRelease},
                {"TavixStudio/SetupKit/Mdac_min.exe",
                 "Datenzugriff, minimal (Beispiel)",
                 {2, 70, 0, 0},
                 kProgram,
                 90'000,
                 kWindowsRelease},
                {"TavixStudio/SetupKit/Jet40Sp3_Comp.exe",
                 "Jet 4.0 Service Pack 3 (Beispiel)",
                 {4, 0, 3, 0},
                 kProgram,
                 150'000,
                 {1999, 11, 4}},
            });
  studio.Put("Windows/System32/stdole2.tlb", kWindowsRelease, TypeLibrary("stdole2", 16'000));
}

void MakeMixingPlant(Studio& studio) {
  using enum ImageKind;
  const std::string project = "Projekte/Mischanlage Süd/";
  const Date release = {2004, 3, 15};
  PutImages(studio, "Büro Süd",
            {
                {"Projekte/Mischanlage Süd/Mischanlage Süd.exe",
                 "Bedienoberfläche der Mischanlage Süd",
                 {2, 4, 0, 17},
                 kProgram,
                 210'000,
                 release},
                {"Projekte/Mischanlage Süd/Texte/deutsch/Meldungen.dll",
                 "Meldetexte",
                 {2, 4, 0, 3},
                 kLibrary,
                 20'000,
                 {2004, 2, 9}},
                {"Projekte/Mischanlage Süd/Texte/englisch/Meldungen.dll",
                 "Messages",
                 {2, 4, 0, 2},
                 kLibrary,
                 22'000,
                 {2004, 1, 28}},
            });
  studio.Put(project + "Bilder/Hintergrund.bmp", release, Picture(640, 480, 0));
  studio.Put(project + "Bilder/Übersicht.bmp", release, Picture(800, 600, 40));
  studio.Put(project + "Bilder/Silo groß.bmp", {2003, 11, 27}, Picture(320, 240, 85));
  studio.Put(project + "Daten/Rezepte.mdb", release, Database("Rezepte", 6000));
  // Sized so that the installation takes three diskettes and the first archive is split.
  studio.Put(project + "Daten/Rezeptarchiv 2003.rzp", {2003, 12, 31},
             Incompressible("Archiv 2003", 1'350'000));
  studio.Put(project + "Daten/Rezeptarchiv 2004.rzp", release,
             Incompressible("Archiv 2004", 700'000));
  studio.Put(project + "Daten/Charge leer.dat", {2003, 6, 1}, Bytes());
}

void MakeSewagePlant(Studio& studio) {
  const std::string project = "Projekte/Kläranlage Server/";
  PutImages(studio, "Büro Süd",
            {{"Projekte/Kläranlage Server/Module/Klaerwerk.dll",
              "Regelung der Belebung",
              {1, 0, 0, 3},
              ImageKind::kLibrary,
              60'000,
              {2004, 1, 12}}});
  studio.Put(project + "Kläranlage Server.dbf", {2004, 3, 15}, Table(4000));
  studio.Put(project + "Daten/Messwerte leer.mdb", {2003, 10, 1}, Database("Messwerte", 200));
}

void MakeControlRoom(Studio& studio) {
  const std::string project = "Projekte/Leitstand Client/";
  const Date release = {2004, 2, 20};
  PutImages(studio, "Büro Süd",
            {{"Projekte/Leitstand Client/Ausgabe/Leitstand.exe",
              "Leitstand der Kläranlage",
              {1, 2, 0, 0},
              ImageKind::kProgram,
              130'000,
              release}});
  studio.Put(project + "Bilder/Übersicht.bmp", release, Picture(800, 600, 60));
  studio.Put(project + "Bilder/Becken 1.bmp", release, Picture(400, 300, 70));
  studio.Put(project + "Bilder/Becken 2.bmp", release, Picture(400, 300, 55));
}

void MakePumpingStations(Studio& studio) {
  using enum ImageKind;
  const Date release = {2004, 1, 26};
  PutImages(studio, "Büro Süd",
            {
                {"Projekte/Pumpwerke/Pumpwerke.exe",
                 "Übersicht der Pumpwerke",
                 {1, 5, 0, 4},
                 kProgram,
                 110'000,
                 release},
                {"Projekte/Pumpwerke/Förderregler/Regler.dll",
                 "Regelung der Förderpumpen",
                 {1, 5, 0, 2},
                 kLibrary,
                 50'000,
                 release},
                {"Projekte/Pumpwerke/Förderregler/Messwandler.dll",
                 "Messwandler",
                 {1, 1, 0, 0},
                 kLibrary,
                 18'000,
                 release},
                {"Komponenten/Manometer.ocx",
                 "Manometer (Beispiel)",
                 {1, 11, 0, 0},
                 kLibrary,
                 70'000,
                 {2001, 4, 2}},
                {"Komponenten/ManoDe.dll",
                 "Manometer, deutsch (Beispiel)",
                 {1, 11, 0, 0},
                 kLibrary,
                 9'000,
                 {2001, 4, 2}},
                {"Windows/System32/MFCBSP.DLL",
                 "Klassenbibliothek (Beispiel)",
                 {6, 0, 0, 0},
                 kLibrary,
                 90'000,
                 kWindowsRelease},
                {"Windows/System32/MSVBVM50.DLL",
                 "Visual-Basic-Laufzeit 5 (Beispiel)",
                 {5, 2, 82, 44},
                 kLibrary,
                 250'000,
                 kWindowsRelease},
            });
  studio.Put("Projekte/Pumpwerke/Pumpwerke.dbf", release, Table(300));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s STUDIO\nWrites the sample studio's binary files.\n", argv[0]);
    return 2;
  }
  try {
    Studio studio{std::filesystem::path(argv[1])};
    MakeProduct(studio);
    MakeWindows(studio);
    MakeMixingPlant(studio);
    MakeSewagePlant(studio);
    MakeControlRoom(studio);
    MakePumpingStations(studio);
    std::printf("%d sample binaries written\n", studio.Count());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
    return 1;
  }
  return 0;
}
