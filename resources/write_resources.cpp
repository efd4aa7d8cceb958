// Writes the plug-in's resource file: write-resources FILE
#include <cstdio>
#include <fstream>

#include "hybridmedian/public.h"
#include "photoshop/property_list.h"
#include "resources/dialog_items.h"
#include "resources/key_name_table.h"
#include "resources/plugin_properties.h"
#include "resources/resource_file.h"

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: write-resources FILE\n");
        return 2;
    }
    const std::vector<uint8_t> bytes = ResourceFileBytes({
        {PIPropertyListType, kPropertyListID, PropertyList()},
        {FourCharCode("TEXT"), kKeyNameTableID, KeyNameTable()},
        {FourCharCode("DLOG"), kRadiusDialogID, DialogTemplate()},
        {FourCharCode("DITL"), kRadiusDialogID, DialogItemList()},
    });
    std::ofstream file(argv[1], std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        std::fprintf(stderr, "write-resources: %s cannot be written.\n", argv[1]);
        return 1;
    }
    return 0;
}
