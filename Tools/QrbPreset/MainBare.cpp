// SPDX-License-Identifier: GPL-3.0-or-later
// qrb-preset-bare: the same for the build, where the product's data files are yet to be made; it needs --document.
#include "Tools/QrbPreset/PresetTool.h"

int main(int count, char** values)
{
    return qrbpreset::runTool({values + 1, values + count}, {});
}
