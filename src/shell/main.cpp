#include "shell/MainBas.h"

int main(int argc, char** argv) {
    return pollarix::Main(argc, argv);
}
