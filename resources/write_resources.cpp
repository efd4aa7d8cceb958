// Writes the plug-in's resource file, and its property list as Windows has it:
// write-resources FILE [PROPERTIES-FILE]
#include <cstdio>
#include <fstream>

#include "hybridmedian/public.h"
#include "photoshop/property_list.h"
#include "resources/dialog_items.h"
#include "resources/key_name_table.h"
#include "resources/plugin_properties.h"
#include "resources/resource_file.h"

namespace {

bool Write(const char *name, const std::vector<uint8_t> &bytes) {
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        std::fprintf(stderr, "write-resources: %s cannot be written.\n", name);
    }
    return static_cast<bool>(file);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: write-resources FILE [PROPERTIES-FILE]\n");
        return 2;
    }
    const bool written = Write(argv[1], ResourceFileBytes({
                                            {PIPropertyListType, kPropertyListID, PropertyList()},
                                            {FourCharCode("TEXT"), kKeyNameTableID, KeyNameTable()},
                                            {FourCharCode("DLOG"), kRadiusDialogID, DialogTemplate()},
                                            {FourCharCode("DITL"), kRadiusDialogID, DialogItemList()},
                                        })) &&
                         (argc == 2 || Write(argv[2], WindowsPropertyList()));
    return written ? 0 : 1;
}
