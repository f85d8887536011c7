// thumbrender: a picture for each shop palette named on the command line.
#include "UT/UT_Installation.h"
#include "UT/UT_Process.h"
#include "thumbnail/ThumbDriver.h"

int main(int argc, char *argv[])
{
    UTstartProgram();
    UTuseInstalledData();
    UTuseInstalledProgram("vaskel");
    return runThumbDriver(argc, argv);
}
