#include "CategoryDescriptors.h"
#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    TcategoryMap map;
    CategoryDescriptors::load(FuzzInput::write("catdes.dat", data, size), map);
    for (const auto &[letter, text] : map)
        (void)CategoryDescriptors::displayText(map, letter);
    return 0;
}
