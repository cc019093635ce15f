// SPDX-License-Identifier: MIT
#include "channel/Program.h"

int main(int argc, char** argv) { return runChannel(argc, argv); }
