#include "driver/process.h"

int main(int argumentCount, char** arguments) {
    return korv::RunProcess(argumentCount, arguments);
}
