# Calls orvant_configuration_catalogue of MODULE with ARGUMENTS, where there are no targets.
cmake_minimum_required(VERSION 3.25)

include("${MODULE}")
separate_arguments(ARGUMENTS)
orvant_configuration_catalogue(${ARGUMENTS})
