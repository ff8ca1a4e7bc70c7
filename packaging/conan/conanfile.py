"""A recipe for Conan 2. Not tried: no Conan was at hand where the project is tested."""
from conan import ConanFile
from conan.tools.cmake import CMake, cmake_layout


class Zentara(ConanFile):
    name = "zentara"
    version = "1.4.5.2151"
    description = "Device layer of a time-of-flight depth-camera SDK"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"
    exports_sources = "../../*", "!../../build/*"
    generators = "CMakeToolchain", "CMakeDeps"

    def requirements(self):
        self.requires("nlohmann_json/3.11.2")
        self.requires("cli11/2.1.2")
        self.requires("stb/cci.20220909")
        if self.settings.os == "Linux":
            self.requires("libjpeg-turbo/2.1.5")
            self.requires("libalsa/1.2.7.2")

    def layout(self):
        cmake_layout(self, src_folder="../..")

    def build(self):
        cmake = CMake(self)
        cmake.configure(variables={"ZENTARA_TESTS": "OFF"})
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # The project's own CMake package knows its targets.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = ["lib/cmake/ZentaraPlugins"]
        self.runenv_info.define("ZENTARASDK_ROOT", self.package_folder + "/")
