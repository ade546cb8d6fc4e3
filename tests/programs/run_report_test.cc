// SPDX-License-Identifier: MIT
#include "programs/run_report.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/testing/files.h"

namespace {

using mardle::Matrix;
using mardle::RunParams;
using testing_support::OutputOf;

RunParams Params() {
  RunParams params;
  params.filename = molva::mystrdup("docs.mat");
  params.nclusters = 7;
  params.rb = 1;
  return params;
}

Matrix DenseMatrix(int nrows, int ncols) {
  Matrix mat;
  mat.nrows = nrows;
  mat.ncols = ncols;
  return mat;
}

Matrix SparseMatrix(int nrows, int ncols, int entries) {
  Matrix mat = DenseMatrix(nrows, ncols);
  mat.rowptr = molva::AllocIntsSet(nrows + 1, entries, "rowptr");
  return mat;
}

std::string Header(const RunParams& params, const Matrix& mat) {
  return OutputOf([&] { mardle::PrintRunInfo(params, mat, params.nclusters); });
}

bool Has(const std::string& text, const std::string& line) {
  return text.find("\n" + line + "\n") != std::string::npos;
}

TEST(RunHeader, TellsTheMatrixAndTheOptions) {
  EXPECT_EQ(
      Header(Params(), SparseMatrix(3, 4, 5)),
      std::string(83, '*') +
          "\n MOLVA 1.5 - mardle\n"
          "\n"
          "Matrix Information --------------------------------------------------------------\n"
          "  Name: docs.mat, #Rows: 3, #Columns: 4, #NonZeros: 5\n"
          "\n"
          "Options -------------------------------------------------------------------------\n"
          "  CRfun=I2, RowModel=None, ColModel=IDF, Prune=1.00, NTrials=10, NIter=10\n"
          "  Direct=NO, RB=YES, Refine=NO, SimFun=Cosine, #Clusters: 7\n"
          "\n"
          "Solution ------------------------------------------------------------------------\n"
          "\n");
}

TEST(RunHeader, CountsTheCellsOfADenseMatrixZerosIncluded) {
  EXPECT_TRUE(Has(Header(Params(), DenseMatrix(3, 4)),
                  "  Name: docs.mat, #Rows: 3, #Columns: 4, #NonZeros: 12"));
}

TEST(RunHeader, CountsMoreCellsThanAnIntHolds) {
  EXPECT_TRUE(Has(Header(Params(), DenseMatrix(100000, 200000)),
                  "  Name: docs.mat, #Rows: 100000, #Columns: 200000, #NonZeros: 20000000000"));
}

TEST(RunHeader, TellsEveryOptionByItsName) {
  RunParams params = Params();
  params.crfun = 5;
  params.rowmodel = 4;
  params.colmodel = 1;
  params.prune = 0.256F;
  params.ntrials = -1;
  params.niter = 200;
  params.direct = 1;
  params.rb = 0;
  params.refine = 1;
  params.simfun = 2;
  params.nclusters = 12;
  const std::string header = Header(params, SparseMatrix(1, 1, 1));
  EXPECT_TRUE(
      Has(header, "  CRfun=G1', RowModel=LOG, ColModel=None, Prune=0.26, NTrials=-1, NIter=200"));
  EXPECT_TRUE(Has(header, "  Direct=YES, RB=NO, Refine=YES, SimFun=CorrCoef, #Clusters: 12"));
}

TEST(RunHeader, TellsBothMethodsThatWereAskedFor) {
  RunParams params = Params();
  params.direct = 1;
  EXPECT_TRUE(Has(Header(params, SparseMatrix(1, 1, 1)),
                  "  Direct=YES, RB=YES, Refine=NO, SimFun=Cosine, #Clusters: 7"));
}

TEST(RunHeader, LeavesUnknownCodesWithoutName) {
  RunParams params = Params();
  params.crfun = 12;
  params.rowmodel = -3;
  params.colmodel = 99;
  EXPECT_TRUE(Has(Header(params, SparseMatrix(1, 1, 1)),
                  "  CRfun=, RowModel=, ColModel=, Prune=1.00, NTrials=10, NIter=10"));
}

TEST(RunHeader, PrintsAFileNameOfAnyLengthAsItIs) {
  RunParams params = Params();
  const std::string name = "100%s" + std::string(1000, 'x');
  params.filename = molva::mystrdup(name.c_str());
  EXPECT_TRUE(Has(Header(params, SparseMatrix(1, 2, 3)),
                  "  Name: " + name + ", #Rows: 1, #Columns: 2, #NonZeros: 3"));
}

TEST(RunTiming, TellsTheThreeTimers) {
  const mardle::RunTimers timers{.IOTmr = 0.25F, .ClusterTmr = 123456.5F, .ReportTmr = 0};
  EXPECT_EQ(OutputOf([&] { mardle::PrintTimingInfo(timers); }),
            "\n"
            "Timing Information --------------------------------------------------------------\n"
            "   I/O:                                   0.250 sec\n"
            "   Clustering:                       123456.500 sec\n"
            "   Reporting:                             0.000 sec\n" +
                std::string(83, '*') + "\n");
}

TEST(RunTiming, ReturnsTheLengthOfItsLastLine) {
  int length = 0;
  OutputOf([&] { length = mardle::PrintTimingInfo({}); });
  EXPECT_EQ(length, 84);
}

}  // namespace
