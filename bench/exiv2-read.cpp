// Reads the metadata of a file again and again as Exiv2 does by itself, and prints the seconds of
// one reading. A program of its own, since the player has parsers of its own for what Exiv2 reads.
//   exiv2-read FILE COUNT
#include <exiv2/exiv2.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int argc, char **argv)
{
    const int count = argc == 3 ? std::atoi(argv[2]) : 0;
    if (count <= 0)
        return EXIT_FAILURE;
    try {
        Exiv2::ImageFactory::open(argv[1])->readMetadata(); // its tables are made once
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i)
            Exiv2::ImageFactory::open(argv[1])->readMetadata();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        std::printf("%.9f\n", taken.count() / count);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
