#include "desktop/desk_program.h"

int main(int argc, char** argv) {
  return korvan::desktop::RunDesk(argc, argv);
}
