VERSION 5.00
Object = "{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0"; "MSCOMCTL.OCX"
Object = "{7A1D4C20-52B6-11D3-9C01-0050DA4E7B10}#4.0#0"; "TXTrend.ocx"
Begin VB.Form frmHaupt 
   Caption         =   "Mischanlage Süd"
   ClientHeight    =   6000
   ClientLeft      =   60
   ClientTop       =   345
   ClientWidth     =   9000
   LinkTopic       =   "frmHaupt"
   ScaleHeight     =   6000
   ScaleWidth      =   9000
   StartUpPosition =   2  'Bildschirmmitte
   Begin VB.CommandButton cmdStart 
      Caption         =   "Charge &starten"
      Height          =   495
      Left            =   120
      TabIndex        =   0
      Top             =   5400
      Width           =   1815
   End
End
Attribute VB_Name = "frmHaupt"
Option Explicit

Private Sub cmdStart_Click()
    If RezeptLaden(App.Path & "\Daten\Rezepte.mdb") Then ChargeStarten
End Sub
