// SPDX-License-Identifier: GPL-3.0-or-later
// qrb-preset: builds and prints files of presets of the product that is linked in.
#include "Tools/QrbPreset/PresetTool.h"

#include <productResources.h>

int main(int count, char** values)
{
    return qrbpreset::runTool({values + 1, values + count}, qrb::productResources());
}
