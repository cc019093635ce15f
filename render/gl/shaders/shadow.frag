// SPDX-License-Identifier: MIT
void main() {}
