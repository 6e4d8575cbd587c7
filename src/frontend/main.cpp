#include "frontend/frontend.h"

int main(int argumentCount, char** arguments) {
    return korv::RunFrontend(argumentCount, arguments);
}
