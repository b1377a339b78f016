#include "fuzz/Input.h"
#include "reference/host/ApplicationContext.h"
#include "reference/host/PluginHost.h"

#include <QFile>
#include <QTemporaryDir>

#include <elf.h>

// A file that claims to be a plug-in: with any metadata in a library that is
// otherwise as it should be, or any file at all. No such file can be loaded, as
// it tells the loader a wrong size, so none of its code runs.

namespace {

constexpr char kNames[] = "\0.shstrtab\0.qtmetadata";

QByteArray BytesOf(const void* pRecord, std::size_t size)
{
    return {static_cast<const char*>(pRecord), static_cast<int>(size)};
}

Elf64_Shdr Section(Elf64_Word name, Elf64_Word type, Elf64_Off offset, Elf64_Xword size)
{
    Elf64_Shdr section{};
    section.sh_name = name;
    section.sh_type = type;
    section.sh_offset = offset;
    section.sh_size = size;
    section.sh_addralign = 1;
    return section;
}

/// The least of a library that metadata are looked for in.
QByteArray LibraryWith(const QByteArray& metadata)
{
    Elf64_Ehdr header{};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64;
    header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_ident[EI_VERSION] = EV_CURRENT;
    header.e_type = ET_DYN;
    header.e_machine = EM_X86_64;
    header.e_version = EV_CURRENT;
    header.e_ehsize = sizeof header;
    header.e_shentsize = sizeof(Elf64_Shdr);
    header.e_shnum = 3;
    header.e_shstrndx = 1;
    const Elf64_Off names = sizeof header;
    const Elf64_Off contents = names + sizeof kNames;
    const QByteArray padding((16 - (contents + metadata.size()) % 8) % 8, '\0');
    header.e_shoff = contents + static_cast<Elf64_Off>(metadata.size() + padding.size());
    const Elf64_Shdr sections[] = {Section(0, SHT_NULL, 0, 0), Section(1, SHT_STRTAB, names, sizeof kNames),
                                   Section(11, SHT_PROGBITS, contents, static_cast<Elf64_Xword>(metadata.size()))};
    return BytesOf(&header, sizeof header) + BytesOf(kNames, sizeof kNames) + metadata + padding
           + BytesOf(sections, sizeof sections);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = Fuzz::Input(data, size).Rest();
    QByteArray library = bytes.startsWith(ELFMAG) ? bytes : LibraryWith(bytes);
    constexpr int kEntrySizeAt = offsetof(Elf64_Ehdr, e_phentsize);
    if (library.size() >= kEntrySizeAt + 2) library.replace(kEntrySizeAt, 2, QByteArray(2, '\0'));

    static const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("plugin.so")));
    Fuzz::Require(file.open(QIODevice::WriteOnly) && file.write(library) == library.size(), "a file can be written");
    file.close();

    static Host::ApplicationContext context;
    Host::PluginHost host(context);
    host.LoadFolder(folder.path());
    Fuzz::Require(host.Services().empty() && host.Refusals().size() == 1, "a library that can't be loaded is refused");
    Fuzz::Require(host.Refusals()[0].text.contains(file.fileName()), "a refusal names the file");
    return 0;
}
