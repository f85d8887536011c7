// thumbrender: a picture for each shop palette named on the command line.
#include "thumbnail/ThumbDriver.h"

int main(int argc, char *argv[])
{
    return runThumbDriver(argc, argv);
}
