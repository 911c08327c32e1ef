// Writes the JSON Schema of the nodes' text form, made from the table of
// fields, to the file given (the build's "node-schema" target writes docs/).
#include "nodefields/node_schema.h"

#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_schema FILE\n";
        return 2;
    }
    std::ofstream file(argv[1], std::ios::binary);
    file << dbn::nodefields::NodeSchemaText();
    return file.good() ? 0 : 1;
}
